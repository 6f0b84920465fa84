#include "OrderedJsonObject.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace orvanta::testing {
namespace {

class Scanner
{
public:
    explicit Scanner(const QByteArray& text) : json(text) {}

    void skipBlanks()
    {
        while (at < json.size() && (json[at] == ' ' || json[at] == '\n' || json[at] == '\r' || json[at] == '\t')) {
            ++at;
        }
    }

    bool take(char expected)
    {
        skipBlanks();
        if (at < json.size() && json[at] == expected) {
            ++at;
            return true;
        }
        return false;
    }

    // A string token, decoded by the JSON parser itself so every escape means what it should.
    std::optional<QString> string()
    {
        skipBlanks();
        const qsizetype start = at;
        if (!take('"')) {
            return std::nullopt;
        }
        while (at < json.size() && json[at] != '"') {
            at += json[at] == '\\' ? 2 : 1;
        }
        if (at >= json.size()) {
            return std::nullopt;
        }
        ++at;
        const QByteArray token = json.mid(start, at - start);
        const auto document = QJsonDocument::fromJson('[' + token + ']');
        if (!document.isArray() || !document.array().at(0).isString()) {
            return std::nullopt;
        }
        return document.array().at(0).toString();
    }

    bool atEnd()
    {
        skipBlanks();
        return at == json.size();
    }

private:
    const QByteArray& json;
    qsizetype at = 0;
};

std::optional<JsonMember> member(Scanner& scanner)
{
    auto name = scanner.string();
    if (!name || !scanner.take(':')) {
        return std::nullopt;
    }
    auto text = scanner.string();
    if (!text) {
        return std::nullopt;
    }
    return JsonMember{*name, *text};
}

} // namespace

std::optional<QList<JsonMember>> readOrderedJsonObject(const QByteArray& json)
{
    Scanner scanner(json);
    if (!scanner.take('{')) {
        return std::nullopt;
    }
    QList<JsonMember> members;
    if (scanner.take('}')) {
        return scanner.atEnd() ? std::optional(members) : std::nullopt;
    }
    do {
        auto next = member(scanner);
        if (!next) {
            return std::nullopt;
        }
        members.append(*next);
    } while (scanner.take(','));
    if (!scanner.take('}') || !scanner.atEnd()) {
        return std::nullopt;
    }
    return members;
}

} // namespace orvanta::testing
