#pragma once

#include "core/interfaces/Preferences.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace quillbook {

/// The user's choices in one small file, which nobody else may read: a line "[General]", then "key=true" or
/// "key=false" for each of the four keys of core/model/PreferenceKeys.h, and nothing else. Trouble with the
/// file is nobody's concern: what cannot be read is absent, and what cannot be written lasts as long as the
/// process. Main thread only.
class UserPreferences final : public Preferences {
public:
    explicit UserPreferences(std::filesystem::path file);

    std::optional<bool> truth(std::string_view key) const override;
    /// Written at once, where it is not what the file holds already. Another key is an error of ours.
    void setTruth(std::string_view key, bool value) override;

private:
    void load();
    void save();

    const std::filesystem::path file_;
    std::map<std::string, bool, std::less<>> values_;
    bool isStored_ = false; ///< The file holds the values as they are here.
};

/// "Quillbook/Quillbook.conf" in the user's configuration folder, which is `XDG_CONFIG_HOME`, where that is
/// an absolute path, else ".config" below the home folder.
std::filesystem::path preferencesFile(const std::optional<std::string>& configHome,
                                      const std::filesystem::path& home);

} // namespace quillbook
