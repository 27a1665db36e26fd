#pragma once

#include <string>

#include "wizard_texts.h"

namespace kwa {

enum class WizardEnd { Finished, Cancelled, NotShown };

// Shows the wizard and waits for its end. Installs nothing.
//
// folder     the program's own, with a separator at its end: the watermark and the driver packages are sought there
// autoDelay  milliseconds after which each page goes on by itself; 0 leaves that to the user
WizardEnd ShowWizard(const WizardTexts& texts, const std::wstring& folder, unsigned long autoDelay);

}  // namespace kwa
