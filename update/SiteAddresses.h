#pragma once

// The maker's web site and the addresses on it that the program uses: the update feed and the
// privacy and terms pages, plus the donation page. The site is chosen when the build is
// configured (ORVANTA_WEBSITE, without a trailing slash); the paths on it are fixed.

#include "update/SiteConfig.h"

#include <QString>

namespace orvanta::update {

inline constexpr char kFeedPath[] = "/downloads/orvanta-latest.json";
inline constexpr char kPrivacyPolicyPath[] = "/privacy/orvanta.html";
inline constexpr char kTermsOfUsePath[] = "/terms/orvanta.html";

inline QString websiteAddress()
{
    return QString::fromUtf8(kWebsite);
}

inline QString feedAddress()
{
    return websiteAddress() + QLatin1String(kFeedPath);
}

inline QString privacyPolicyAddress()
{
    return websiteAddress() + QLatin1String(kPrivacyPolicyPath);
}

inline QString termsOfUseAddress()
{
    return websiteAddress() + QLatin1String(kTermsOfUsePath);
}

inline QString donationAddress()
{
    return QString::fromUtf8(kDonationAddress);
}

} // namespace orvanta::update
