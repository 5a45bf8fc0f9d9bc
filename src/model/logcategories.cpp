#include "model/logcategories.h"

// Debug output (every line a download prints) only when asked for with QT_LOGGING_RULES.
Q_LOGGING_CATEGORY(lcEngine, "quillbox.engine", QtInfoMsg)
Q_LOGGING_CATEGORY(lcCookies, "quillbox.cookies", QtInfoMsg)
Q_LOGGING_CATEGORY(lcUi, "quillbox.ui", QtInfoMsg)
