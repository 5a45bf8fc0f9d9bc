#include "model/logcategories.h"

Q_LOGGING_CATEGORY(lcEngine, "quillbox.engine")
Q_LOGGING_CATEGORY(lcCookies, "quillbox.cookies")
Q_LOGGING_CATEGORY(lcUi, "quillbox.ui")
