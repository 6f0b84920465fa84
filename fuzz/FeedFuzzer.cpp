// Feeds arbitrary bytes to the update feed reader and the version comparison. Besides crashes
// and sanitizer reports it checks what must hold for every input: a feed that was read reads the
// same again after a round trip, and the comparison is an order (reflexive, antisymmetric,
// transitive, and a version followed by ".1" is always newer).

#include "update/FeedParser.h"
#include "update/VersionComparison.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

using orvanta::update::compareNumerically;
using orvanta::update::ComparisonResult;

void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

int sign(ComparisonResult result)
{
    return static_cast<int>(result);
}

void checkFeed(const QByteArray& bytes)
{
    const auto feed = orvanta::update::parseFeed(bytes);
    if (!feed) {
        return;
    }
    const QJsonObject rewritten{{QLatin1String(orvanta::update::kVersionKey), feed->version},
                                {QLatin1String(orvanta::update::kDownloadUrlKey), feed->downloadUrl},
                                {QLatin1String(orvanta::update::kReleaseNotesKey), feed->releaseNotes}};
    const auto again = orvanta::update::parseFeed(QJsonDocument(rewritten).toJson());
    require(again.has_value() && *again == *feed, "a feed reads the same after a round trip");
}

void checkComparison(const QString& a, const QString& b, const QString& c)
{
    require(compareNumerically(a, a) == ComparisonResult::OrderedSame, "reflexive");
    const int ab = sign(compareNumerically(a, b));
    const int ba = sign(compareNumerically(b, a));
    require(ab == -ba, "antisymmetric");
    require(orvanta::update::isNewerVersion(a, b) == (ab > 0), "newer means descending");

    const int bc = sign(compareNumerically(b, c));
    const int ac = sign(compareNumerically(a, c));
    if (ab <= 0 && bc <= 0) {
        require(ac <= 0, "transitive");
        if (ab == 0 && bc == 0) {
            require(ac == 0, "equivalence is transitive");
        }
    }
    if (ab >= 0 && bc >= 0) {
        require(ac >= 0, "transitive");
    }
    require(orvanta::update::isNewerVersion(a + QStringLiteral(".1"), a), "a further component is newer");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checkFeed(bytes);

    // Three versions, separated by NUL bytes.
    const QList<QByteArray> parts = bytes.split('\0');
    const QString a = QString::fromUtf8(parts.value(0));
    const QString b = QString::fromUtf8(parts.value(1));
    const QString c = QString::fromUtf8(parts.value(2));
    checkComparison(a, b, c);
    return 0;
}
