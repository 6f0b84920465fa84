#include "DeviceDescription.h"

#include "core/OneLine.h"
#include "files/BoundedRead.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cmath>
#include <limits>
#include <set>

namespace orvanta::sim {

namespace {

// A problem found while reading; the message names where in the document it is.
struct DescriptionError
{
    std::string message;
};

[[noreturn]] void fail(const std::string& where, const std::string& problem)
{
    throw DescriptionError{where + ": " + problem};
}

void checkKeys(const QJsonObject& object, const std::set<QString>& allowed, const std::string& where)
{
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!allowed.contains(it.key())) {
            fail(where, "unknown member \"" + core::quotedExcerpt(it.key().toStdString()) + "\"");
        }
    }
}

std::string requireString(const QJsonObject& object, const char* key, const std::string& where)
{
    const auto value = object.value(QLatin1String(key));
    if (!value.isString()) {
        fail(where + "." + key, "expected a string");
    }
    auto text = value.toString().toStdString();
    if (text.size() > kMaxDescriptionTextBytes) {
        fail(where + "." + key, "longer than " + std::to_string(kMaxDescriptionTextBytes) + " bytes");
    }
    return text;
}

double numberOr(const QJsonObject& object, const char* key, double fallback, const std::string& where)
{
    const auto value = object.value(QLatin1String(key));
    if (value.isUndefined()) {
        return fallback;
    }
    if (!value.isDouble()) {
        fail(where + "." + key, "expected a number");
    }
    return value.toDouble();
}

template <typename Int>
Int integerOr(const QJsonObject& object, const char* key, Int fallback, const std::string& where,
              Int highest = std::numeric_limits<Int>::max())
{
    const double number = numberOr(object, key, static_cast<double>(fallback), where);
    if (std::trunc(number) != number || number < static_cast<double>(std::numeric_limits<Int>::min()) ||
        number > static_cast<double>(std::numeric_limits<Int>::max())) {
        fail(where + "." + key, "expected a whole number in range");
    }
    if (number > static_cast<double>(highest)) {
        fail(where + "." + key, "more than " + std::to_string(highest));
    }
    return static_cast<Int>(number);
}

bool boolOr(const QJsonObject& object, const char* key, bool fallback, const std::string& where)
{
    const auto value = object.value(QLatin1String(key));
    if (value.isUndefined()) {
        return fallback;
    }
    if (!value.isBool()) {
        fail(where + "." + key, "expected true or false");
    }
    return value.toBool();
}

QJsonObject requireObject(const QJsonValue& value, const std::string& where)
{
    if (!value.isObject()) {
        fail(where, "expected an object");
    }
    return value.toObject();
}

QJsonArray arrayOrEmpty(const QJsonObject& object, const char* key, const std::string& where, qsizetype most)
{
    const auto value = object.value(QLatin1String(key));
    if (value.isUndefined()) {
        return {};
    }
    if (!value.isArray()) {
        fail(where + "." + key, "expected an array");
    }
    const auto array = value.toArray();
    if (array.size() > most) {
        fail(where + "." + key, "more than " + std::to_string(most) + " entries");
    }
    return array;
}

hal::UInt32 fourCharCodeFrom(const std::string& text, const std::string& where)
{
    if (text.size() != 4) {
        fail(where, "expected a four-character code such as \"blue\", got \"" + core::quotedExcerpt(text) + "\"");
    }
    hal::UInt32 code = 0;
    for (const char c : text) {
        code = (code << 8) | static_cast<unsigned char>(c);
    }
    return code;
}

std::string indexed(const std::string& where, qsizetype index)
{
    return where + "[" + std::to_string(index) + "]";
}

FailureRule readFailure(const QJsonValue& value, const std::string& where)
{
    const auto object = requireObject(value, where);
    checkKeys(object, {"call", "selector", "scope", "element", "status"}, where);
    FailureRule rule;
    const auto callName = requireString(object, "call", where);
    const auto call = callKindFromName(callName);
    if (!call) {
        fail(where + ".call", "unknown call \"" + core::quotedExcerpt(callName) + "\"");
    }
    rule.call = *call;
    if (object.contains("selector")) {
        rule.selector = fourCharCodeFrom(requireString(object, "selector", where), where + ".selector");
    }
    if (object.contains("scope")) {
        rule.scope = fourCharCodeFrom(requireString(object, "scope", where), where + ".scope");
    }
    if (object.contains("element")) {
        rule.element = integerOr<hal::UInt32>(object, "element", 0, where);
    }
    if (!object.contains("status")) {
        fail(where + ".status", "missing");
    }
    rule.status = integerOr<hal::OSStatus>(object, "status", 0, where);
    return rule;
}

std::vector<FailureRule> readFailures(const QJsonObject& object, const std::string& where)
{
    std::vector<FailureRule> rules;
    const auto list = arrayOrEmpty(object, "failures", where, kMaxDescriptionFailureRules);
    for (qsizetype i = 0; i < list.size(); ++i) {
        rules.push_back(readFailure(list.at(i), indexed(where + ".failures", i)));
    }
    return rules;
}

VolumeControlSpec readVolume(const QJsonValue& value, const std::string& where)
{
    const auto object = requireObject(value, where);
    checkKeys(object, {"writable", "level"}, where);
    VolumeControlSpec control;
    control.present = true;
    control.writable = boolOr(object, "writable", true, where);
    const double level = numberOr(object, "level", 0.5, where);
    if (!(level >= 0.0 && level <= 1.0)) {
        fail(where + ".level", "expected a number from 0 to 1");
    }
    control.level = static_cast<float>(level);
    return control;
}

DeviceSpec readDevice(const QJsonValue& value, const std::string& where)
{
    const auto object = requireObject(value, where);
    checkKeys(object,
              {"id", "name", "uid", "transport", "sampleRate", "outputStreams", "inputStreams", "virtualMainVolume",
               "channelVolumes", "mainVolume", "failures"},
              where);
    DeviceSpec device;
    if (object.contains("id")) {
        device.id = integerOr<hal::AudioObjectID>(object, "id", 0, where);
        if (*device.id <= hal::kAudioObjectSystemObject) {
            fail(where + ".id", "IDs 0 and 1 are taken by the system");
        }
    }
    device.name = requireString(object, "name", where);
    device.uid = requireString(object, "uid", where);
    if (object.contains("transport")) {
        device.transportType = fourCharCodeFrom(requireString(object, "transport", where), where + ".transport");
    }
    device.nominalSampleRate = numberOr(object, "sampleRate", 48000.0, where);
    device.outputStreams = integerOr<hal::UInt32>(object, "outputStreams", 1, where, kMaxDescriptionStreams);
    device.inputStreams = integerOr<hal::UInt32>(object, "inputStreams", 0, where, kMaxDescriptionStreams);
    if (object.contains("virtualMainVolume")) {
        device.virtualMainVolume = readVolume(object.value("virtualMainVolume"), where + ".virtualMainVolume");
    }
    const auto channels = arrayOrEmpty(object, "channelVolumes", where, kMaxDescriptionChannels);
    for (qsizetype i = 0; i < channels.size(); ++i) {
        device.channelVolumes.push_back(readVolume(channels.at(i), indexed(where + ".channelVolumes", i)));
    }
    if (object.contains("mainVolume")) {
        device.mainVolume = readVolume(object.value("mainVolume"), where + ".mainVolume");
    }
    device.failures = readFailures(object, where);
    return device;
}

SystemSpec readSystem(const QJsonObject& root)
{
    checkKeys(root, {"devices", "defaultOutput", "failures"}, "top level");
    SystemSpec system;
    const auto devices = arrayOrEmpty(root, "devices", "top level", kMaxDescriptionDevices);
    std::set<hal::AudioObjectID> ids;
    for (qsizetype i = 0; i < devices.size(); ++i) {
        auto device = readDevice(devices.at(i), indexed("devices", i));
        if (device.id && !ids.insert(*device.id).second) {
            fail(indexed("devices", i) + ".id", "ID " + std::to_string(*device.id) + " is used twice");
        }
        system.devices.push_back(std::move(device));
    }
    if (root.contains("defaultOutput")) {
        system.defaultOutputUID = requireString(root, "defaultOutput", "top level");
    }
    system.failures = readFailures(root, "top level");
    return system;
}

std::string lineAndColumn(const std::string& json, int offset)
{
    int line = 1;
    int column = 1;
    for (int i = 0; i < offset && i < static_cast<int>(json.size()); ++i) {
        if (json[static_cast<std::size_t>(i)] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

} // namespace

DescriptionResult parseDeviceDescription(const std::string& json, const std::string& sourceName)
{
    // Every error is one line, whatever the source's name or the document holds.
    const auto errorLine = [&sourceName](const std::string& problem) {
        return core::escapeControlCharacters(sourceName + ": " + problem);
    };
    if (json.size() > kMaxDescriptionBytes) {
        return errorLine("larger than " + std::to_string(kMaxDescriptionBytes) + " bytes");
    }
    QJsonParseError parseError{};
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(json), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return errorLine("invalid JSON at " + lineAndColumn(json, parseError.offset) + ": " +
                         parseError.errorString().toStdString());
    }
    if (!document.isObject()) {
        return errorLine("expected a JSON object at the top level");
    }
    try {
        return readSystem(document.object());
    } catch (const DescriptionError& error) {
        return errorLine(error.message);
    }
}

DescriptionResult loadDeviceDescription(const std::string& path)
{
    auto read = files::readBoundedFile(path, kMaxDescriptionBytes);
    if (const auto* failure = std::get_if<files::ReadFailure>(&read)) {
        return core::escapeControlCharacters(path + ": cannot read the device description: " + failure->reason);
    }
    return parseDeviceDescription(std::get<std::string>(read), path);
}

} // namespace orvanta::sim
