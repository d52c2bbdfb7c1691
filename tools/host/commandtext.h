#pragma once

// The reference host's readable form of a command message.

#include <QString>
#include <QVariant>

// One command message as an operator reads it: "Band Up rx 0", "MOX (toggle) rx 0",
// "VFO rx 0 ch 1 step -3". The name and the parameter names come from the
// command table; messages the table does not know are shown as the codec's
// own description.
QString commandText(const QVariant &message);
