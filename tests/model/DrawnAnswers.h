#pragma once

#include "Draw.h"

int drawnBatteryLevel(int choice);
ReportRateInfo drawnRateInfo(int list, int current);
/// One answer is spoilt, or all are sane again.
ReceiverAnswers otherAnswers(ReceiverAnswers answers, const Draw &draw);
