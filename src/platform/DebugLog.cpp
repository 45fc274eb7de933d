#include "platform/DebugLog.h"

Q_LOGGING_CATEGORY(lcMeasure, "oculix.measure", QtWarningMsg)
Q_LOGGING_CATEGORY(lcCalibration, "oculix.calibration", QtWarningMsg)
Q_LOGGING_CATEGORY(lcImage, "oculix.image", QtWarningMsg)
Q_LOGGING_CATEGORY(lcCapture, "oculix.capture", QtWarningMsg)
Q_LOGGING_CATEGORY(lcApp, "oculix.app", QtWarningMsg)
