// The plug-in's logging category.

#include "dialixlogging.h"

Q_LOGGING_CATEGORY(dialixLog, "dialix")
