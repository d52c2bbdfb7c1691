#pragma once

// The plug-in's logging category, "dialix": every line the plug-in writes to the
// debug log goes through it, so that an operator can switch the lines off and on
// with Qt's logging rules (QT_LOGGING_RULES="dialix.debug=false").

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(dialixLog)
