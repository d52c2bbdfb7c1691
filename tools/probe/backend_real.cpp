#include "tools/probe/backend.h"

bool prepareBackend(QTextStream &)
{
    return true;
}

void finishBackend(QTextStream &) { }
