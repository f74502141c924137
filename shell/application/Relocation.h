#pragma once

#include "core/interfaces/MainThread.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillbook {

/// Where the application is copied to.
inline constexpr const char* relocationTarget = "/Applications/Quillbook.app";

/// Whether a bundle runs from a disk image or a place that the system made up for it: there it can be granted
/// no access that lasts. A plain external disk looks the same and counts too.
bool needsRelocation(const std::filesystem::path& bundle);

/// What the relocation needs of the desktop. Main thread only.
class RelocationHosting {
public:
    enum class AlertStyle { critical, warning };
    struct Alert {
        AlertStyle style = AlertStyle::critical;
        std::string message;
        std::string informativeText;
        std::vector<std::string> buttons;

        bool operator==(const Alert&) const = default;
    };

    virtual ~RelocationHosting() = default;
    /// Modal; gives the index of the button that was chosen.
    virtual std::size_t show(const Alert& alert) = 0;
    virtual bool exists(const std::filesystem::path& file) = 0;
    /// Copies the whole folder. Throws a DescribedError.
    virtual void copyBundle(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Starts another instance; `completed` comes from any thread, whatever the outcome.
    virtual void openNewInstance(const std::filesystem::path& bundle, std::function<void()> completed) = 0;
    virtual void reveal(const std::filesystem::path& file) = 0;
    virtual void terminate() = 0;
};

/// The platform's host; null where an application is installed and nothing relocates, as on Linux.
std::shared_ptr<RelocationHosting> relocationHost();

/// Offers to move the application to the user's applications and ends this instance. An older copy there is
/// opened as it stands and never replaced. Main thread only; the host has to live until it ends the instance.
class RelocationFlow {
public:
    RelocationFlow(std::shared_ptr<RelocationHosting> host, std::shared_ptr<MainThread> mainThread);

    void run(const std::filesystem::path& bundle);

private:
    void openTarget();
    void explainFailure(const std::filesystem::path& bundle, const std::string& reason);

    const std::shared_ptr<RelocationHosting> host_;
    const std::shared_ptr<MainThread> mainThread_;
};

} // namespace quillbook
