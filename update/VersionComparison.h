#pragma once

// Comparison of version strings such as 1.4.2, the way a person reads them: runs of decimal
// digits compare by their numeric value (1.10 is greater than 1.9, 007 equals 7, and a run of any
// length is fine), every other character compares by its UTF-16 code, and when one string ends
// while all before was equal, the shorter is the smaller (2.0.1 is greater than 2.0). A digit
// against another character compares as characters. No locale plays a part.

#include <QStringView>

namespace orvanta::update {

enum class ComparisonResult
{
    OrderedAscending = -1, // the left string is the smaller
    OrderedSame = 0,
    OrderedDescending = 1, // the left string is the greater
};

ComparisonResult compareNumerically(QStringView lhs, QStringView rhs);

// True only when latest is greater than installed; an equal or older latest is not newer.
bool isNewerVersion(QStringView latest, QStringView installed);

} // namespace orvanta::update
