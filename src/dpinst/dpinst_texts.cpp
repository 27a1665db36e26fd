#include "dpinst/dpinst_texts.h"

namespace kwa {

const DpinstTexts kEnglishTexts = {
    "    <welcomeTitle>Welcome to the KWA %s Driver Installer Wizard </welcomeTitle>\n",
    "    <welcomeIntro>This Driver Installer Wizard will install and update drivers for these KWA devices: \n",
    "    <eulaHeaderTitle>End User License Agreement (EULA) </eulaHeaderTitle>\n",
    "    <eulaYesButton>I accept this EULA </eulaYesButton>\n",
    "    <eulaNoButton>I do not accept this EULA </eulaNoButton>\n",
    "    <eula type=\"txt\" path=\"eula_en.txt\" />\n",
};

const DpinstTexts kGermanTexts = {
    "    <welcomeTitle>Willkommen beim KWA %s Driver Installer Wizard </welcomeTitle>\n",
    "    <welcomeIntro>Dieser Driver Installer Wizard installiert und aktualisiert die Treiber der folgenden KWA "
    "Ger%ste: \n",
    "    <eulaHeaderTitle>Endbenutzer-Lizenzabkommen (EULA) </eulaHeaderTitle>\n",
    "    <eulaYesButton>Ich &amp;akzeptiere diese EULA </eulaYesButton>\n",
    "    <eulaNoButton>Ich akzeptiere diese EULA &amp;nicht </eulaNoButton>\n",
    "    <eula type=\"txt\" path=\"eula_de.txt\" />\n",
};

}  // namespace kwa
