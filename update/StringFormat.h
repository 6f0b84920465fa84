#pragma once

// Filling in a translated text that carries one string placeholder, written printf-style as "%@"
// (or positionally as "%1$@"), as in "Version %@ is the latest version.". "%%" stands for a
// percent sign; any other "%" is left as it is.

#include <QString>

namespace orvanta::update {

QString formatWithString(const QString& format, const QString& argument);

} // namespace orvanta::update
