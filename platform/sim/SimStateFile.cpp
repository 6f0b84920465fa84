#include "SimStateFile.h"

#include "files/FileReplace.h"
#include "hal/PropertyTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace orvanta::sim {

namespace {

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

QJsonValue volumeValue(const VolumeControlSpec& control)
{
    return control.present ? QJsonValue(static_cast<double>(control.level)) : QJsonValue();
}

QJsonObject deviceObject(const SimDevice& device)
{
    QJsonArray channels;
    for (const auto& channel : device.spec.channelVolumes) {
        channels.append(volumeValue(channel));
    }
    return QJsonObject{
        {"id", static_cast<qint64>(device.id)},
        {"name", qs(device.spec.name)},
        {"uid", qs(device.spec.uid)},
        {"transport", qs(hal::fourCharString(device.spec.transportType))},
        {"sampleRate", device.spec.nominalSampleRate},
        {"outputStreams", static_cast<qint64>(device.spec.outputStreams)},
        {"inputStreams", static_cast<qint64>(device.spec.inputStreams)},
        {"volumes", QJsonObject{{"virtualMain", volumeValue(device.spec.virtualMainVolume)},
                                {"channels", channels},
                                {"main", volumeValue(device.spec.mainVolume)}}},
    };
}

QJsonValue plistToJson(const hal::PropertyList& value)
{
    if (const auto* text = value.asString()) {
        return qs(*text);
    }
    if (const auto* number = value.asInteger()) {
        return static_cast<qint64>(number->value);
    }
    if (const auto* items = value.asArray()) {
        QJsonArray array;
        for (const auto& item : *items) {
            array.append(plistToJson(item));
        }
        return array;
    }
    const auto* entries = value.asDictionary();
    if (!entries) {
        return QJsonValue();
    }
    QJsonObject object;
    for (const auto& [key, entry] : *entries) {
        object.insert(qs(key), plistToJson(entry));
    }
    return object;
}

QJsonObject aggregateObject(const SimulatedAudioHardware& system, const SimDevice& device)
{
    QJsonArray active;
    for (const auto id : device.subDevices) {
        const auto* sub = system.subDevice(id);
        active.append(QJsonObject{
            {"id", static_cast<qint64>(id)}, {"uid", qs(sub->uid)}, {"extraLatencyFrames", sub->extraLatencyFrames}});
    }
    return QJsonObject{{"id", static_cast<qint64>(device.id)},
                       {"uid", qs(device.spec.uid)},
                       {"name", qs(device.spec.name)},
                       {"composition", plistToJson(device.composition)},
                       {"activeSubDevices", active}};
}

bool writeAtomically(const std::string& path, const std::string& content, std::string& error)
{
    if (const auto reason = files::replaceFile(path, content)) {
        error = path + ": cannot write the simulated state: " + *reason;
        return false;
    }
    return true;
}

} // namespace

std::string stateAsJson(const SimulatedAudioHardware& system)
{
    QJsonArray devices;
    QJsonArray aggregates;
    for (const auto& device : system.devices()) {
        if (device.isAggregate) {
            aggregates.append(aggregateObject(system, device));
        } else {
            devices.append(deviceObject(device));
        }
    }
    const auto* defaultDevice = system.device(system.defaultOutputDevice());
    const QJsonObject root{{"devices", devices},
                           {"aggregates", aggregates},
                           {"defaultOutput", defaultDevice ? QJsonValue(qs(defaultDevice->spec.uid)) : QJsonValue()}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented).toStdString();
}

bool watchStateInFile(SimulatedAudioHardware& system, const std::string& path, std::string& error)
{
    files::removeStaleTemporaries(path);
    if (!writeAtomically(path, stateAsJson(system), error)) {
        return false;
    }
    // A later write that fails leaves the last good state in the file and says so.
    system.setOnChange([&system, path] {
        std::string failure;
        if (!writeAtomically(path, stateAsJson(system), failure)) {
            std::fprintf(stderr, "orvanta: %s\n", failure.c_str());
            std::fflush(stderr);
        }
    });
    return true;
}

} // namespace orvanta::sim
