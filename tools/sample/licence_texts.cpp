#include "licence_texts.h"

#include "padding.h"

namespace kwa {
namespace {

// In both texts an empty line ends a paragraph, and a single line end stands for a blank: the wizard wraps the text.

const char kEnglish[] = R"(END USER LICENSE AGREEMENT (EULA)

for the driver software of KWA audio devices

This is a sample text. It stands in for the manufacturer's licence agreement, so that the installer can be built and
shown without it. It binds nobody.

1. Subject matter

This agreement is made between you, the user, and KWA, the manufacturer. It covers the driver package for the KWA
devices that the first page of this wizard lists: the audio drivers for 32-bit and 64-bit Windows, the ASIO driver
libraries, the settings program, the mixer application Panorama and its help file (together "the software").

2. Grant of licence

KWA grants you, free of charge, the non-exclusive right to install the software on any number of your computers and to
use it together with KWA devices. You may make copies for backup. You may pass the software on to others, provided
that you pass it on complete and unchanged, together with this agreement, and that you charge nothing for it.

3. Restrictions

You may not modify, translate, rent or sell the software. You may not decompile or disassemble it, except where the
law expressly permits you to do so. Notices of copyright and ownership must stay where they are.

4. Ownership

The software is licensed, not sold. KWA and its suppliers keep all rights in the software that this agreement does not
expressly grant. Product names may be trademarks of their owners.

5. Before you install

Save your work and close all programs that use an audio device. Connect the device when the wizard asks you to do so.
Turn on devices with their own power supply before you do so. Windows may have to be restarted before the device is
ready. Turn the volume down before you play the first sound: a wrong setting of the sample rate or of the output level
can damage loudspeakers and your hearing.

6. Warranty

The software has been prepared with great care. It is nevertheless provided as it is: KWA does not promise that it is
free of errors, that it suits a certain purpose, or that it works with every computer and every other program. Defects
of the device itself are covered by the warranty that came with the device, which this agreement does not change.

7. Liability

KWA is liable without limit for damage caused intentionally or by gross negligence, and for injury to life, body or
health. Beyond that, KWA is not liable for lost recordings, lost profit or other consequential damage that arises from
the use of the software. Mandatory rules of product liability remain unaffected.

8. Updates

KWA may provide newer versions of the software. Unless a newer version brings an agreement of its own, this agreement
applies to it as well. There is no claim to updates, nor to support for a particular version of Windows.

9. Data protection

The software collects no personal data and sends nothing over a network. Settings, mixer scenes and equaliser presets
are stored on your computer and in the device only. They are removed together with the software, unless you ask the
settings program to keep them for a later installation or for another computer of yours.

10. Firmware

The settings program can write new firmware to a device. Do not switch the device off and do not disconnect it while
the firmware is being written. Keep an older version only if the manufacturer's support asks you to do so. Firmware is
part of the software in the sense of this agreement.

11. Termination

Your rights end without notice if you break this agreement. You must then remove the software from your computers and
destroy all copies. You may end the agreement yourself at any time by removing the software.

12. Final provisions

Should a provision of this agreement be void, the others remain in force. Changes of this agreement must be made in
writing. The law of the country in which the manufacturer has its seat applies.

By choosing "I accept this EULA" you confirm that you have read and understood this sample and agree to it.
)";

const char kGerman[] = R"(ENDBENUTZER-LIZENZABKOMMEN (EULA)

für die Treibersoftware der KWA-Audiogeräte

Dies ist ein Beispieltext. Er vertritt das Lizenzabkommen des Herstellers, damit sich das Installationsprogramm auch
ohne dieses bauen und vorführen lässt. Er verpflichtet niemanden.

1. Gegenstand

Dieses Abkommen wird zwischen Ihnen, dem Benutzer, und KWA, dem Hersteller, geschlossen. Es gilt für das Treiberpaket
der KWA-Geräte, die auf der ersten Seite dieses Assistenten aufgeführt sind: die Audiotreiber für 32-Bit- und
64-Bit-Windows, die ASIO-Treiberbibliotheken, das Einstellungsprogramm, das Mischpultprogramm Panorama und dessen
Hilfedatei (zusammen "die Software").

2. Einräumung der Lizenz

KWA räumt Ihnen unentgeltlich das nicht ausschließliche Recht ein, die Software auf beliebig vielen eigenen Rechnern
zu installieren und zusammen mit KWA-Geräten zu benutzen. Sie dürfen Sicherungskopien anfertigen. Sie dürfen die
Software an andere weitergeben, sofern Sie dies vollständig, unverändert, zusammen mit diesem Abkommen und
unentgeltlich tun.

3. Einschränkungen

Sie dürfen die Software weder verändern, übersetzen, vermieten noch verkaufen. Sie dürfen sie nicht dekompilieren oder
disassemblieren, soweit das Gesetz dies nicht ausdrücklich gestattet. Hinweise auf Urheber und Eigentümer dürfen nicht
entfernt werden.

4. Eigentum

Die Software wird lizenziert, nicht verkauft. Alle Rechte, die dieses Abkommen nicht ausdrücklich einräumt, verbleiben
bei KWA und seinen Lieferanten. Produktnamen können Marken ihrer jeweiligen Inhaber sein.

5. Vor der Installation

Sichern Sie Ihre Arbeit und schließen Sie alle Programme, die ein Audiogerät benutzen. Verbinden Sie das Gerät erst,
wenn der Assistent Sie dazu auffordert. Möglicherweise muss Windows neu gestartet werden, bevor das Gerät bereit ist.
Bei Geräten mit eigenem Netzteil schließen Sie zuerst das Netzteil und danach das USB-Kabel an. Drehen Sie die
Lautstärke herunter, bevor Sie den ersten Ton wiedergeben: Eine falsche Abtastrate oder ein zu hoher Ausgangspegel
kann Lautsprecher beschädigen und Ihr Gehör gefährden.

6. Gewährleistung

Die Software wurde mit Sorgfalt erstellt. Sie wird gleichwohl so überlassen, wie sie ist: KWA sichert nicht zu, dass
sie fehlerfrei ist, sich für einen bestimmten Zweck eignet oder mit jedem Rechner und jedem anderen Programm
zusammenwirkt. Für Mängel des Geräts selbst und seines Zubehörs gilt die Gewährleistung, die mit dem Gerät gegeben
wurde; dieses Abkommen ändert sie nicht.

7. Haftung

KWA haftet unbeschränkt für vorsätzlich oder grob fahrlässig verursachte Schäden sowie für die Verletzung des Lebens,
des Körpers oder der Gesundheit. Darüber hinaus haftet KWA nicht für verlorene Aufnahmen, entgangenen Gewinn oder
andere Folgeschäden, die aus der Benutzung der Software entstehen. Zwingende Regeln der Produkthaftung bleiben
unberührt.

8. Aktualisierungen

KWA kann neuere Fassungen der Software bereitstellen. Sofern eine neuere Fassung kein eigenes Abkommen mitbringt, gilt
dieses auch für sie. Ein Anspruch auf Aktualisierungen oder auf die Unterstützung einer bestimmten Windows-Version
besteht nicht.

9. Datenschutz

Die Software erhebt keine personenbezogenen Daten und sendet nichts über ein Netz. Einstellungen, Mischpultszenen und
Voreinstellungen des Equalizers werden ausschließlich auf Ihrem Rechner und im Gerät gespeichert. Sie werden zusammen
mit der Software entfernt, sofern Sie das Einstellungsprogramm nicht anweisen, sie für eine spätere Installation oder
für einen anderen Ihrer Rechner aufzubewahren.

10. Firmware

Das Einstellungsprogramm kann eine neue Firmware in ein Gerät schreiben. Schalten Sie das Gerät nicht aus und trennen
Sie es nicht vom Rechner, solange die Firmware geschrieben wird. Kehren Sie zu einer älteren Fassung nur dann zurück,
wenn der Kundendienst des Herstellers Sie darum bittet. Firmware ist Software im Sinne dieses Abkommens.

11. Beendigung

Ihre Rechte enden ohne Kündigung, wenn Sie gegen dieses Abkommen verstoßen. Sie müssen die Software dann von Ihren
Rechnern entfernen und alle Kopien vernichten. Sie selbst können das Abkommen jederzeit beenden, indem Sie die
Software entfernen.

12. Schlussbestimmungen

Sollte eine Bestimmung dieses Abkommens unwirksam sein, so bleiben die übrigen in Kraft. Änderungen dieses Abkommens
bedürfen der Schriftform; mündliche Nebenabreden bestehen nicht. Ist der Benutzer Kaufmann, so ist der Sitz des
Herstellers ausschließlicher Gerichtsstand für alle Streitigkeiten aus diesem Abkommen. Es gilt das Recht des Landes,
in dem der Hersteller seinen Sitz hat.

Mit der Wahl von "Ich akzeptiere diese EULA" bestätigen Sie, dass Sie diesen Beispieltext gelesen und verstanden haben
und ihm zustimmen.
)";

// Joins the lines of each paragraph and gives every line its CR LF.
std::string Unwrapped(const std::string& source) {
  std::string text;
  for (std::size_t i = 0; i < source.size(); ++i) {
    if (source[i] != '\n') {
      text += source[i];
    } else if (i + 1 == source.size()) {
      text += "\r\n";
    } else if (source[i + 1] == '\n') {
      text += "\r\n\r\n";
      ++i;
    } else {
      text += ' ';
    }
  }
  return text;
}

// count bytes of lines of "=", the last of which is the shortest.
std::string Rules(std::size_t count) {
  std::string text;
  while (count > 0) {
    const std::size_t line = count > 140 ? 70 : count;
    text += line >= 2 ? std::string(line - 2, '=') + "\r\n" : std::string(line, '=');
    count -= line;
  }
  return text;
}

}  // namespace

std::string MakeLicenceText(LicenceLanguage language, std::size_t size) {
  const std::string text = "\xEF\xBB\xBF" + Unwrapped(language == LicenceLanguage::kGerman ? kGerman : kEnglish);
  RequireSize(text.size(), size);
  return text + Rules(size - text.size());
}

}  // namespace kwa
