// Anchor for the meta-object code of the interface headers in this folder; the
// headers are listed as sources of this library so that moc processes them.
#include "cwkeycontrolabstract.h"
