#pragma once
// The module opens what ends in ".dxf", ".dwg", ".dwt" or ".dws" in small letters and starts a new drawing
// for everything else, so "PLAN.DXF" would be told as Done without having been opened. Such a drawing is
// given to the host under a name of its own: a symbolic link in the data folder, which the host follows when
// it saves. The user never sees these names.
#include <string>

class HostNames {
  public:
    /// dataFolder holds the state; the links go to its folder "links".
    explicit HostNames(const std::string& dataFolder);

    /// Removes the links of the run before.
    void Clear() const;
    /// The name under which the host gets a drawing: nearly always its own. Empty with one line when the
    /// link cannot be made.
    std::string ForHost(const std::string& path, std::string* error);
    /// Back from a name in the queue to the drawing's own.
    std::string ForUser(const std::string& name) const;

  private:
    std::string folder;
    int count = 0;
};
