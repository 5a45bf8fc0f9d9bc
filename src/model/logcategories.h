#pragma once

#include <QLoggingCategory>

// One category per subsystem; messages carry the component prefix the logs are searched by.
Q_DECLARE_LOGGING_CATEGORY(lcEngine)
Q_DECLARE_LOGGING_CATEGORY(lcCookies)
Q_DECLARE_LOGGING_CATEGORY(lcUi)
