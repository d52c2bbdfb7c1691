// dialix-probe's back end for the system's hidapi: nothing to prepare.

#include "tools/probe/backend.h"

bool prepareBackend(QTextStream &)
{
    return true;
}

void finishBackend(QTextStream &) { }
