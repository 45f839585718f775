#include "app/RunLogs.h"

#include "log/ZipArchive.h"
#include "system/NewFile.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

constexpr const char* kLog = "/tnl log.html";
constexpr const char* kArchive = "/TNLLog.zip";
constexpr const char* kTrace = "/TNLapp.log";
constexpr std::string_view kLink = "<span id=\"";
constexpr int kLevel = 9;

/// A run log with the archive that belongs to it.
struct Part {
    std::string Log;
    std::string Archive;
    /// Which entries of the archive are wanted, and their names in the merged one.
    std::unordered_map<std::string, std::string> Names;
};

/// Whole, or the exception says why not: what is read here replaces its sources, so a log that cannot be read
/// must not pass for an empty one.
std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (in.peek() != std::ifstream::traits_type::eof()) {
        text << in.rdbuf();
    }
    if (!in.is_open() || in.bad() || text.bad()) {
        throw CZipException(CZipException::ReadError, path, std::strerror(errno));
    }
    return text.str();
}

std::string AsideName(const std::string& folder, const char* file, int number) {
    return folder + file + ".part-" + std::to_string(number);
}

/// What was set aside in a folder, oldest first, and what stands there under the usual names.
std::vector<Part> PartsIn(const std::string& folder, bool asideOnly = false) {
    std::vector<Part> parts;
    for (int number = 1; fs::exists(AsideName(folder, kLog, number)); ++number) {
        parts.push_back({AsideName(folder, kLog, number), AsideName(folder, kArchive, number), {}});
    }
    if (!asideOnly && fs::exists(folder + kLog)) {
        parts.push_back({folder + kLog, folder + kArchive, {}});
    }
    return parts;
}

/// The lines of a log without its frame.
std::vector<std::string> LinesOf(std::string text) {
    for (const std::string_view frame : {"<html><body>", "</body></html>"}) {
        for (std::size_t at; (at = text.find(frame)) != std::string::npos;) {
            text.erase(at, frame.size());
        }
    }
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        // The last line of a host that was killed may be cut off.
        if (line.ends_with("<br />")) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

/// Names under which the logs of the drawings are linked.
std::unordered_set<std::string> LinksOf(const std::string& text) {
    std::unordered_set<std::string> links;
    for (std::size_t at = text.find(kLink); at != std::string::npos; at = text.find(kLink, at)) {
        at += kLink.size();
        links.insert(text.substr(at, std::min(text.find('"', at), text.size()) - at));
    }
    return links;
}

/// As the module makes it of the path of a host's log.
std::string LinkOf(std::string path) {
    std::replace(path.begin(), path.end(), ':', '-');
    std::replace(path.begin(), path.end(), '\\', '_');
    std::replace(path.begin(), path.end(), '/', '_');
    return path;
}

/// The time of a line, in the form of the user's locale; that of the line before when it has none.
std::time_t TimeOf(const std::string& line, std::time_t before) {
    static const locale_t user = newlocale(LC_TIME_MASK, "", locale_t{});
    constexpr std::string_view head = "<span>";
    std::tm time{};
    time.tm_isdst = -1;
    const bool known = line.starts_with(head) && user &&
                       strptime_l(line.c_str() + head.size(), "%x %X", &time, user) != nullptr;
    return known ? std::mktime(&time) : before;
}

struct Line {
    std::time_t Time;
    std::string Text;
    Part* From;
};

/// The drawing that a line tells of; empty when it tells of none.
std::string_view DrawingOf(std::string_view line) {
    const std::size_t link = line.find(kLink);
    const std::size_t start = link == std::string_view::npos ? link : line.find("\">", link);
    const std::size_t end = line.find("</span>", std::min(start, line.size()));
    return end == std::string_view::npos ? std::string_view() : line.substr(start + 2, end - start - 2);
}

/// Of a drawing that was begun twice, since its host was killed, only the last attempt counts.
void DropFirstAttempts(std::vector<Line>* lines) {
    std::unordered_set<std::string> seen;
    std::reverse(lines->begin(), lines->end());
    std::erase_if(*lines, [&seen](const Line& line) {
        const std::string_view drawing = DrawingOf(line.Text);
        return !drawing.empty() && !seen.emplace(drawing).second;
    });
    std::reverse(lines->begin(), lines->end());
}

/// Hosts on several machines may have named two logs alike.
void NameEntries(std::vector<Line>* lines) {
    std::unordered_set<std::string> taken;
    for (Line& line : *lines) {
        for (const std::string& link : LinksOf(line.Text)) {
            auto [known, isNew] = line.From->Names.try_emplace(link, link);
            for (int number = 2; isNew && !taken.insert(known->second).second; ++number) {
                known->second = link + "-" + std::to_string(number);
            }
            if (known->second != link) {
                line.Text.replace(line.Text.find(kLink) + kLink.size(), link.size(), known->second);
            }
        }
    }
}

/// Also tells each part which of its entries the text links to.
std::string MergedText(std::vector<Part>* parts) {
    std::vector<Line> lines;
    std::vector<Line> starts;
    std::vector<Line> ends;
    for (Part& part : *parts) {
        std::time_t time = 0;
        for (std::string& text : LinesOf(ReadText(part.Log))) {
            time = TimeOf(text, time);
            auto& kind = text.find(">Batch started<") != std::string::npos     ? starts
                         : text.find(">Batch completed<") != std::string::npos ? ends
                                                                               : lines;
            kind.push_back({time, std::move(text), &part});
        }
    }
    const auto earlier = [](const Line& left, const Line& right) { return left.Time < right.Time; };
    std::stable_sort(lines.begin(), lines.end(), earlier);
    DropFirstAttempts(&lines);
    NameEntries(&lines);
    std::string text = "<html><body>";
    if (!starts.empty()) {
        text += std::min_element(starts.begin(), starts.end(), earlier)->Text + "\r\n";
    }
    for (const Line& line : lines) {
        text += line.Text + "\r\n";
    }
    if (!ends.empty()) {
        text += std::max_element(ends.begin(), ends.end(), earlier)->Text + "\r\n";
    }
    return text + "</body></html>";
}

bool WriteText(const std::string& path, const std::string& text, std::string* error) {
    files::NewFile fresh;
    const bool done = fresh.Open(path) && fresh.Write(text) && fresh.Commit();
    if (!done) {
        *error = path + ": cannot be written: " + files::Because(errno);
    }
    return done;
}

bool Append(const std::string& path, std::string_view text) {
    const int file = files::OpenOwn(path, O_WRONLY | O_APPEND);
    bool done = file >= 0;
    while (done && !text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        done = count > 0 || (count < 0 && errno == EINTR);
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    const int cause = errno;
    if (file >= 0) {
        close(file);
    }
    errno = cause;
    return done;
}

/// Copies the entries that are wanted; others are of a run before.
void CopyEntries(const Part& part, CZipArchive* target) {
    CZipArchive source;
    if (!fs::exists(part.Archive)) {
        return;
    }
    if (!source.Open(part.Archive, CZipArchive::Existing)) {
        throw CZipException(CZipException::ReadError, part.Archive, std::strerror(errno));
    }
    for (int i = 0; i < source.Count(); ++i) {
        CFileHeader header;
        source.GetFileInfo(header, i);
        if (const auto wanted = part.Names.find(header.Name); wanted != part.Names.end()) {
            const std::string content = source.ReadWholeFile(i);
            CFileHeader fresh;
            fresh.Name = wanted->second;
            fresh.ModTime = header.ModTime;
            fresh.ModDate = header.ModDate;
            target->OpenNewFile(fresh, kLevel);
            target->WriteNewFile(content.data(), content.size());
            target->CloseNewFile();
        }
    }
}

/// Packs the logs of the drawings that a dead host has left behind.
void PackLeftLogs(const Part& part, const std::string& hostLogs) {
    const std::unordered_set<std::string> links = LinksOf(ReadText(part.Log));
    std::vector<fs::path> left;
    std::error_code failure;
    for (fs::directory_iterator walk(hostLogs, failure), end; !failure && walk != end;
         walk.increment(failure)) {
        if (links.contains(LinkOf(walk->path().string()))) {
            left.push_back(walk->path());
        }
    }
    if (left.empty()) {
        return;
    }
    std::sort(left.begin(), left.end());
    CZipArchive archive;
    const bool isThere = fs::exists(part.Archive);
    if (!archive.Open(part.Archive, isThere ? CZipArchive::Existing : CZipArchive::Create)) {
        throw CZipException(CZipException::WriteError, part.Archive, std::strerror(errno));
    }
    for (const fs::path& log : left) {
        CFileHeader header;
        header.Name = LinkOf(log.string());
        if (archive.FindFile(header.Name, true) < 0) {
            const std::string content = ReadText(log);
            archive.OpenNewFile(header, kLevel, log.c_str());
            archive.WriteNewFile(content.data(), content.size());
            archive.CloseNewFile();
        }
    }
    archive.Close();
    for (const fs::path& log : left) {
        fs::remove(log, failure);
    }
}

}  // namespace

bool SetLogsAside(const std::string& folder, const std::string& hostLogs, std::string* error) {
    if (!fs::exists(folder + kLog)) {
        return true;
    }
    const int number = static_cast<int>(PartsIn(folder, true).size()) + 1;
    const Part part = {AsideName(folder, kLog, number), AsideName(folder, kArchive, number), {}};
    // The archive first: a part is known by its log.
    std::remove(part.Archive.c_str());
    if ((fs::exists(folder + kArchive) &&
         std::rename((folder + kArchive).c_str(), part.Archive.c_str()) != 0) ||
        std::rename((folder + kLog).c_str(), part.Log.c_str()) != 0) {
        *error = part.Log + ": the log cannot be set aside: " + std::strerror(errno);
        return false;
    }
    try {
        PackLeftLogs(part, hostLogs);
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
    return true;
}

bool HasLogsAside(const std::string& folder) {
    return fs::exists(AsideName(folder, kLog, 1));
}

void DropLogsAside(const std::string& folder) {
    const std::vector<Part> parts = PartsIn(folder, true);
    // The last first, so that those that are left still count from one.
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        std::remove(part->Log.c_str());
        std::remove(part->Archive.c_str());
    }
}

bool MergeLogs(const std::vector<std::string>& folders, const std::string& target, std::string* error) {
    std::vector<Part> parts;
    for (const std::string& folder : folders) {
        const std::vector<Part> found = PartsIn(folder);
        parts.insert(parts.end(), found.begin(), found.end());
    }
    if (parts.empty()) {
        return true;
    }
    try {
        CZipArchive archive;
        if (!archive.Open(target + kArchive, CZipArchive::Create)) {
            *error = target + kArchive + ": cannot be written: " + std::strerror(errno);
            return false;
        }
        const std::string text = MergedText(&parts);
        for (const Part& part : parts) {
            CopyEntries(part, &archive);
        }
        archive.Close();
        if (!WriteText(target + kLog, text, error)) {
            return false;
        }
    } catch (const CZipException& failure) {
        *error = failure.what();
        return false;
    }
    DropLogsAside(target);
    return true;
}

bool AppendTrace(const std::string& from, const std::string& to, std::string* error) {
    std::ifstream in(from + kTrace, std::ios::binary);
    // Copying nothing would count as a failure.
    if (!in || in.peek() == std::ifstream::traits_type::eof()) {
        return true;
    }
    std::ostringstream text;
    text << in.rdbuf();
    if (!Append(to + kTrace, text.str())) {
        *error = to + kTrace + ": cannot be written: " + files::Because(errno);
        return false;
    }
    return true;
}

std::string HostLogFolder(const std::string& stateHome) {
    if (!stateHome.empty()) {
        return stateHome + "/drafthost";
    }
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state && *state == '/') {
        return std::string(state) + "/drafthost";
    }
    const char* home = std::getenv("HOME");
    return home && *home == '/' ? std::string(home) + "/.local/state/drafthost" : "/tmp";
}
