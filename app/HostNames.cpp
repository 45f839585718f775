#include "app/HostNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// The extension as the module wants it; empty when it is fine or none of a drawing.
std::string WantedExtension(const fs::path& path) {
    constexpr std::array<std::string_view, 4> known = {".dxf", ".dwg", ".dwt", ".dws"};
    const std::string extension = path.extension().string();
    std::string small = extension;
    std::transform(small.begin(), small.end(), small.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const bool isKnown = std::find(known.begin(), known.end(), small) != known.end();
    return isKnown && small != extension ? small : std::string();
}

}  // namespace

HostNames::HostNames(const std::string& dataFolder) : folder(dataFolder + "/links/") {}

void HostNames::Clear() const {
    std::error_code failure;
    fs::remove_all(folder, failure);
}

std::string HostNames::ForHost(const std::string& path, std::string* error) {
    const std::string extension = WantedExtension(path);
    if (extension.empty()) {
        return path;
    }
    // A folder each, since drawings of the same name may lie in several folders.
    const fs::path own = folder + std::to_string(++count);
    const fs::path link = own / (fs::path(path).stem().string() + extension);
    std::error_code failure;
    fs::create_directories(own, failure);
    if (!failure) {
        fs::create_symlink(path, link, failure);
    }
    if (failure) {
        *error = link.string() + ": cannot be made: " + failure.message();
        return {};
    }
    return link.string();
}

std::string HostNames::ForUser(const std::string& name) const {
    if (!name.starts_with(folder)) {
        return name;
    }
    std::error_code failure;
    const fs::path target = fs::read_symlink(name, failure);
    return failure ? name : target.string();
}
