// What a list says of a result. Numbers with a decimal point and the minus sign of print.
#pragma once

#include "campaign/npr_result.h"

#include <QString>

QString deviceText(const NprResult& result);
QString dateText(const NprResult& result); // local time; as it stands where it is no time
QString notchCountText(const NprResult& result);
// Of the highest peak.
QString peakText(const NprResult& result);
// Of the first threshold, in the notch where it is the narrowest; "not crossed" where one is open.
QString rangeText(const NprResult& result);
// "pass", "FAIL", or empty without a limit.
QString verdictText(const NprResult& result);
