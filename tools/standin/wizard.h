#pragma once

#include <string>

#include "wizard_texts.h"

namespace kwa {

enum class WizardEnd { Finished, Cancelled, NotShown };

// Shows the wizard and waits until it is closed. Installs nothing.
//
// folder     the program's own folder, with a separator at the end; holds the watermark and the driver packages
// autoDelay  milliseconds after which the wizard leaves each page by itself; 0 leaves that to the user
WizardEnd ShowWizard(const WizardTexts& texts, const std::wstring& folder, unsigned long autoDelay);

}  // namespace kwa
