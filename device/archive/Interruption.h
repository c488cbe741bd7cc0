#pragma once

namespace dubrix {

/// A process's wish to end what it does tidily when it is interrupted, terminated or hung up.
class Interruption {
public:
    /// From here on such a signal is noted instead of ending the process; one that is ignored
    /// stays so.
    static void note();
    /// Whether one has come.
    static bool isAsked();
    /// Ends the process by the signal that has come, if one has.
    static void follow();
};

} // namespace dubrix
