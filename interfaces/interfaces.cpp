// Anchor for the meta-object code of the interface headers listed beside it.
#include "cwkeycontrolabstract.h"
