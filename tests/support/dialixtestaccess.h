#pragma once

// Test-only access to the options page's Designer form, so that a test can
// work the controls as an operator would.

#include "plugins/panels/dialix/source/dialixoptions.h"
#include "ui_dialixoptions.h"

class DialixTestAccess
{
public:
    static Ui::DialixOptions *ui(DialixOptions &page) { return page.ui.get(); }
};
