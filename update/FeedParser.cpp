#include "FeedParser.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

namespace orvanta::update {

std::optional<Feed> parseFeed(const QByteArray& document)
{
    QJsonParseError error{};
    const QJsonDocument parsed = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError || !parsed.isObject()) {
        return std::nullopt;
    }
    const QJsonObject members = parsed.object();
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!member.value().isString()) {
            return std::nullopt;
        }
    }
    const QLatin1String keys[] = {QLatin1String(kVersionKey), QLatin1String(kDownloadUrlKey),
                                  QLatin1String(kReleaseNotesKey)};
    for (const auto& key : keys) {
        if (!members.contains(key)) {
            return std::nullopt;
        }
    }
    Feed feed{members.value(keys[0]).toString(), members.value(keys[1]).toString(), members.value(keys[2]).toString()};
    if (feed.version.size() > kMaxVersionLength) {
        return std::nullopt;
    }
    return feed;
}

} // namespace orvanta::update
