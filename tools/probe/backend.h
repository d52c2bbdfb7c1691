#pragma once

// The hidapi back end that dialix-probe is linked with.

#include <QTextStream>

// The hidapi back end that the probe is linked with. The shipped probe uses the
// system's hidapi and these do nothing; the virtual-panel build prepares its
// simulated panels here (see backend_virtual.cpp).

// Called once before the probe runs. Returns false when the back end cannot be
// prepared (the message is written to `err`).
bool prepareBackend(QTextStream &err);

// Called once after the probe has run, before hid_exit().
void finishBackend(QTextStream &err);
