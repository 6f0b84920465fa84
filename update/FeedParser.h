#pragma once

// The update feed: one JSON object all of whose members are strings. It is read as a map from
// string to string, so a member of any other type (number, boolean, array, object, null), even
// one that is not used, makes the whole document unusable, as does a missing "version",
// "download_url" or "release_notes". A version longer than kMaxVersionLength is not a version
// this program can show or compare, and makes the document unusable too.

#include <QByteArray>
#include <QString>

#include <optional>

namespace orvanta::update {

inline constexpr char kVersionKey[] = "version";
inline constexpr char kDownloadUrlKey[] = "download_url";
inline constexpr char kReleaseNotesKey[] = "release_notes";
inline constexpr qsizetype kMaxVersionLength = 64;

struct Feed
{
    QString version;      // the newest published version, for example 1.4.2
    QString downloadUrl;  // opened in the browser when the user chooses to download
    QString releaseNotes; // shown as the dialog's informative text

    friend bool operator==(const Feed&, const Feed&) = default;
};

// The feed in document (UTF-8 JSON), or nothing when it breaks any of the rules above.
std::optional<Feed> parseFeed(const QByteArray& document);

} // namespace orvanta::update
