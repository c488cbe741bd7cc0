#pragma once

namespace dubrix {

/// Keeps apart what works on one device, of whatever process: a run of the pipeline claims the
/// device before it chooses a number and holds it until the duplicate is installed. Main thread
/// only.
class DeviceClaim {
public:
    virtual ~DeviceClaim() = default;

    /// Claims the device. False while it is claimed already, here or elsewhere; never waits for the
    /// other's end. True also where the platform cannot tell: then nothing can be installed, and
    /// the run ends in that.
    virtual bool claim() = 0;

    /// Gives a claimed device back. The end of the process does so too, however it ends; what the
    /// process has started never holds a claim.
    virtual void release() = 0;
};

} // namespace dubrix
