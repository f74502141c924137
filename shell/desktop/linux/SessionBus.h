#pragma once

namespace quillbook {

/// Where the session has no bus, D-Bus's library would start one (dbus-launch), which would outlive us and
/// which no other program knows. Afterwards it counts as absent, here and in what we start. To be called
/// before anything else speaks to the bus, and before threads read the environment.
void refuseToStartABus();

} // namespace quillbook
