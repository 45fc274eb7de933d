#pragma once

#include <QLoggingCategory>

// Diagnostic traces, one category per subsystem, silent unless enabled, e.g.
// QT_LOGGING_RULES="oculix.measure.debug=true".
Q_DECLARE_LOGGING_CATEGORY(lcMeasure)
Q_DECLARE_LOGGING_CATEGORY(lcCalibration)
Q_DECLARE_LOGGING_CATEGORY(lcImage)
Q_DECLARE_LOGGING_CATEGORY(lcCapture)
Q_DECLARE_LOGGING_CATEGORY(lcApp)
