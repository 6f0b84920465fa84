#include "VersionComparison.h"

namespace orvanta::update {
namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

// The end of the run of digits that starts at begin.
qsizetype digitRunEnd(QStringView text, qsizetype begin)
{
    qsizetype end = begin;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    return end;
}

// The digits of a run without its leading zeros; a run of zeros keeps its last one.
QStringView significantDigits(QStringView run)
{
    qsizetype first = 0;
    while (first + 1 < run.size() && run[first] == u'0') {
        ++first;
    }
    return run.mid(first);
}

ComparisonResult compareRuns(QStringView lhs, QStringView rhs)
{
    const QStringView left = significantDigits(lhs);
    const QStringView right = significantDigits(rhs);
    if (left.size() != right.size()) {
        return left.size() < right.size() ? ComparisonResult::OrderedAscending : ComparisonResult::OrderedDescending;
    }
    // Same number of significant digits: the first differing digit decides.
    for (qsizetype index = 0; index < left.size(); ++index) {
        if (left[index] != right[index]) {
            return left[index] < right[index] ? ComparisonResult::OrderedAscending
                                              : ComparisonResult::OrderedDescending;
        }
    }
    return ComparisonResult::OrderedSame;
}

} // namespace

ComparisonResult compareNumerically(QStringView lhs, QStringView rhs)
{
    qsizetype left = 0;
    qsizetype right = 0;
    while (left < lhs.size() && right < rhs.size()) {
        if (isDigit(lhs[left]) && isDigit(rhs[right])) {
            const qsizetype leftEnd = digitRunEnd(lhs, left);
            const qsizetype rightEnd = digitRunEnd(rhs, right);
            const auto runs = compareRuns(lhs.sliced(left, leftEnd - left), rhs.sliced(right, rightEnd - right));
            if (runs != ComparisonResult::OrderedSame) {
                return runs;
            }
            left = leftEnd;
            right = rightEnd;
            continue;
        }
        const char16_t leftCode = lhs[left].unicode();
        const char16_t rightCode = rhs[right].unicode();
        if (leftCode != rightCode) {
            return leftCode < rightCode ? ComparisonResult::OrderedAscending : ComparisonResult::OrderedDescending;
        }
        ++left;
        ++right;
    }
    if (left < lhs.size()) {
        return ComparisonResult::OrderedDescending;
    }
    if (right < rhs.size()) {
        return ComparisonResult::OrderedAscending;
    }
    return ComparisonResult::OrderedSame;
}

bool isNewerVersion(QStringView latest, QStringView installed)
{
    return compareNumerically(latest, installed) == ComparisonResult::OrderedDescending;
}

} // namespace orvanta::update
