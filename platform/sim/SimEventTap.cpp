#include "SimEventTap.h"

namespace orvanta::sim {

namespace {

class SimPort final : public services::EventTapPort
{
public:
    explicit SimPort(std::shared_ptr<SimEventTap::Tap> tapState) : tap(std::move(tapState)) {}
    // Releasing the port leaves the tap installed, as releasing a tap's port does elsewhere.
    ~SimPort() override = default;

    void addToMainLoop() override { tap->onMainLoop = true; }
    void setEnabled(bool enabled) override { tap->enabled = enabled; }
    bool isEnabled() const override { return tap->enabled; }

private:
    std::shared_ptr<SimEventTap::Tap> tap;
};

} // namespace

std::unique_ptr<services::EventTapPort> SimEventTap::create(quint64 eventMask, services::TapCallback callback)
{
    if (!allowed) {
        return nullptr;
    }
    ++created;
    auto tap = std::make_shared<Tap>();
    tap->mask = eventMask;
    tap->callback = std::move(callback);
    taps.push_back(tap);
    return std::make_unique<SimPort>(tap);
}

bool SimEventTap::inject(const services::TapEvent& event)
{
    std::optional<services::TapEvent> current = event;
    for (auto it = taps.rbegin(); it != taps.rend() && current; ++it) {
        const auto& tap = **it;
        const bool wanted = current->type < 64 && (tap.mask & (quint64{1} << current->type)) != 0;
        if (tap.onMainLoop && tap.enabled && wanted) {
            current = tap.callback(*current);
        }
    }
    if (current) {
        passedOn.push_back(*current);
    }
    return current.has_value();
}

} // namespace orvanta::sim
