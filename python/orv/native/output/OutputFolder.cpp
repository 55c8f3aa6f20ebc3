#include "python/orv/native/output/OutputFolder.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unordered_set>
#include <utility>

#include <sys/file.h>
#include <sys/stat.h>

#include "python/orv/native/output/Beneath.hpp"
#include "python/orv/native/output/OutputErrors.hpp"
#include "python/orv/native/output/Temporary.hpp"

namespace orv {
namespace {

namespace fs = std::filesystem;

constexpr int mostLinks = 40;
constexpr mode_t permissions = 0777;
constexpr mode_t newFile = 0666;
constexpr mode_t newPrivateFile = 0600;

using Status = struct stat;

Status statusOf(const Descriptor& file, const std::string& location) {
  Status status{};
  if (fstat(file.get(), &status) != 0) throw SystemError(errno, location);
  return status;
}

// The status of a file or link in an open folder, or nothing.
std::optional<Status> findStatus(int folder, const std::string& name) {
  Status status{};
  if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
  if (errno == ENOENT) return std::nullopt;
  throw SystemError(errno, name);
}

// Puts the components of a path on a stack, the first one on top.
void push(std::vector<std::string>& waiting, const fs::path& path) {
  std::vector<std::string> parts;
  for (const fs::path& part : path) {
    if (part != "." && !part.empty()) parts.push_back(part);
  }
  waiting.insert(waiting.end(), parts.rbegin(), parts.rend());
}

std::string readAll(const Descriptor& file, const std::string& location, const Status& status) {
  std::string bytes;
  // One more than expected, so that the end is met at once.
  bytes.resize(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1);
  std::size_t size = 0;
  while (true) {
    const ssize_t count = ::read(file.get(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw SystemError(errno, location);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

void syncFolder(const Descriptor& folder, const std::string& location) {
  const Descriptor readable(openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!readable || fsync(readable.get()) != 0) throw SystemError(errno, location);
}

}  // namespace

OutputFolder::OutputFolder(std::string path, std::string real, bool durable)
    : path_(std::move(path)), real_(std::move(real)), durable_(durable) {
  open();
}

void OutputFolder::open() {
  missing_.clear();
  for (fs::path at = real_;; at = at.parent_path()) {
    const int access = missing_.empty() ? O_RDONLY : O_PATH;
    folder_ = Descriptor(::open(at.c_str(), access | O_DIRECTORY | O_CLOEXEC));
    if (folder_) return;
    if (errno != ENOENT && errno != ENOTDIR) throw SystemError(errno, at);
    Status status{};
    if (lstat(at.c_str(), &status) == 0) {
      throw OutputRefused(at.string() + " is not a folder; nothing can be written below it");
    }
    missing_.insert(missing_.begin(), at.filename());
  }
}

bool OutputFolder::create() {
  if (exists()) return false;
  bool isNew = false;
  for (const std::string& name : std::exchange(missing_, {})) {
    isNew = mkdirat(folder_.get(), name.c_str(), permissions) == 0;
    if (!isNew && errno != EEXIST) throw SystemError(errno, real_);
    if (durable_) syncFolder(folder_, real_);
    Descriptor next = findBeneath(folder_.get(), name, O_RDONLY | O_DIRECTORY);
    if (!next) throw SystemError(ENOENT, real_);
    folder_ = std::move(next);
  }
  return isNew;
}

bool OutputFolder::lock(bool shared) {
  while (flock(folder_.get(), (shared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return false;
    if (errno != EINTR) throw SystemError(errno, real_);
  }
  return true;
}

std::string OutputFolder::locate(const std::string& path) {
  if (!exists()) return path;
  const auto [folder, name] = splitPath(path);
  return follow(locateFolder(folder), name, Wanted::file);
}

std::string OutputFolder::locateFolder(const std::string& path) {
  const auto known = located_.find(path);
  if (known != located_.end()) return known->second;
  return located_[path] = follow("", path, Wanted::folder);
}

std::string OutputFolder::follow(const std::string& start, const std::string& path,
                                 Wanted wanted) const {
  std::string done = start;
  std::vector<std::string> waiting;
  push(waiting, path);
  for (int links = 0; !waiting.empty();) {
    const std::string current = joinPath(done, waiting.back());
    waiting.pop_back();
    const std::optional<Status> status = findStatus(folder_.get(), current);
    if (status && S_ISLNK(status->st_mode)) {
      if (++links > mostLinks) throw SystemError(ELOOP, shown(current));
      push(waiting, target(current));
      done.clear();
      continue;
    }
    if (status) requireKind(current, status->st_mode, waiting.empty() ? wanted : Wanted::folder);
    done = current;
  }
  if (done.empty() && wanted == Wanted::file) requireKind(done, S_IFDIR, wanted);
  return done;
}

std::string OutputFolder::target(const std::string& link) const {
  std::error_code failure;
  const fs::path place = shown(link);
  fs::path real = fs::read_symlink(place, failure);
  if (!failure) real = fs::weakly_canonical(place.parent_path() / real, failure);
  if (failure.value() == ELOOP) {
    throw OutputRefused("the link " + place.string() + " leads to itself");
  }
  if (failure) throw SystemError(failure.value(), place);
  const fs::path relative = real.lexically_relative(real_);
  if (relative.empty() || *relative.begin() == "..") {
    throw OutputRefused("the link " + place.string() + " leads out of the folder " + path_);
  }
  return relative;
}

void OutputFolder::requireKind(const std::string& location, mode_t mode, Wanted wanted) const {
  if (wanted == Wanted::folder && !S_ISDIR(mode)) {
    throw OutputRefused(shown(location) + " is not a folder");
  }
  if (wanted == Wanted::file && !S_ISREG(mode)) {
    throw OutputRefused(shown(location) + " is there and not a file");
  }
}

std::string OutputFolder::shown(const std::string& location) const {
  return location.empty() ? real_ : (fs::path(real_) / location).string();
}

Descriptor OutputFolder::find(const std::string& location, int flags) const {
  return exists() ? findBeneath(folder_.get(), location, flags) : Descriptor();
}

// The file is opened without waiting for anyone: a pipe may have been put in its place.
std::optional<std::string> OutputFolder::read(const std::string& location) const {
  const Descriptor file = find(location, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  compared_[location] = std::nullopt;
  if (!file) return std::nullopt;
  const Status status = statusOf(file, location);
  compared_[location] = versionOf(status);
  requireKind(location, status.st_mode, Wanted::file);
  return readAll(file, location, status);
}

OutputFolder::Comparison OutputFolder::compare(const std::string& location, std::string_view data,
                                               const std::vector<Region>& regions,
                                               const Markers* markers) const {
  const std::optional<std::string> old = read(location);
  if (!old) return {};
  Comparison result;
  result.exists = true;
  result.same = *old == data;
  std::vector<Region> kept;
  if (markers != nullptr && (!result.same || !regions.empty())) kept = markers->find(*old);
  result.hash = frameHash(*old, kept);
  if (result.same || kept.empty()) return result;
  std::unordered_set<std::string_view> asked;
  for (const Region& region : regions) asked.insert(region.id);
  RegionTexts texts;
  for (const Region& region : kept) {
    if (asked.count(region.id) != 0) texts.emplace(region.id, region.textIn(*old));
  }
  if (!texts.empty()) {
    result.endsLinesWithReturn = orv::endsLinesWithReturn(*old, kept);
    result.merged = withRegions(data, regions, texts, result.endsLinesWithReturn);
    result.same = *old == *result.merged;
  }
  if (result.same) return result;
  for (const Region& region : kept) {
    result.regions.push_back(
        {region.id, region.line, std::string(region.textIn(*old)), texts.count(region.id) != 0});
  }
  return result;
}

OutputFolder::Version OutputFolder::versionOf(const Status& status) {
  return {static_cast<std::int64_t>(status.st_ino),
          status.st_size,
          status.st_mtim.tv_sec,
          status.st_mtim.tv_nsec,
          status.st_ctim.tv_sec,
          status.st_ctim.tv_nsec};
}

void OutputFolder::requireUnchanged(const std::string& location, const Status* now) const {
  const auto found = compared_.find(location);
  if (found == compared_.end()) return;
  if (found->second == (now != nullptr ? std::optional(versionOf(*now)) : std::nullopt)) return;
  throw OutputRefused(shown(location) + " was changed while the run was at work");
}

bool OutputFolder::hasFolder(const std::string& location) const {
  return static_cast<bool>(find(location, O_PATH | O_DIRECTORY));
}

void OutputFolder::replace(const std::string& location, std::string_view data,
                           std::optional<mode_t> mode) {
  const auto [folder, name] = splitPath(location);
  const Descriptor parent = makeFolder(folder);
  const std::optional<Status> old = findStatus(parent.get(), name);
  if (old) requireKind(location, old->st_mode, Wanted::file);
  requireUnchanged(location, old ? &*old : nullptr);
  if (old && !mode) mode = old->st_mode & permissions;
  // Nobody may look into a file before it has the mode of the one that it replaces.
  Temporary file(parent.get(), mode ? newPrivateFile : newFile);
  file.write(data);
  if (mode) file.setMode(*mode & permissions);
  if (durable_) file.sync();
  file.replace(name);
  compared_.erase(location);
  changed(folder);
}

void OutputFolder::setMode(const std::string& location, mode_t mode) const {
  const Descriptor file = find(location, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file) throw SystemError(ENOENT, location);
  const Status status = statusOf(file, location);
  requireKind(location, status.st_mode, Wanted::file);
  if ((status.st_mode & permissions) == (mode & permissions)) return;
  if (fchmod(file.get(), mode & permissions) != 0) throw SystemError(errno, location);
}

void OutputFolder::remove(const std::string& location) {
  const auto [folder, name] = splitPath(location);
  const Descriptor parent = openFolder(folder);
  if (!parent) return;
  if (const std::optional<Status> now = findStatus(parent.get(), name)) {
    requireUnchanged(location, &*now);
  }
  if (unlinkat(parent.get(), name.c_str(), 0) != 0 && errno != ENOENT) {
    throw SystemError(errno, location);
  }
  changed(folder);
}

bool OutputFolder::removeFolder(const std::string& location) {
  const auto [folder, name] = splitPath(location);
  const Descriptor parent = openFolder(folder);
  if (!parent || unlinkat(parent.get(), name.c_str(), AT_REMOVEDIR) != 0) return false;
  changed_.erase(location);
  changed(folder);
  return true;
}

void OutputFolder::removeAbandoned(const std::string& location) const {
  if (const Descriptor folder = openFolder(location)) orv::removeAbandoned(folder.get());
}

void OutputFolder::sync() {
  for (const std::string& location : std::exchange(changed_, {})) {
    if (const Descriptor folder = openFolder(location)) syncFolder(folder, location);
  }
}

Descriptor OutputFolder::openFolder(const std::string& location) const {
  return find(location, O_PATH | O_DIRECTORY);
}

Descriptor OutputFolder::makeFolder(const std::string& location) {
  Descriptor folder = openFolder(location);
  if (folder) return folder;
  if (location.empty()) throw SystemError(ENOENT, real_);
  const auto [above, name] = splitPath(location);
  const Descriptor parent = makeFolder(above);
  if (mkdirat(parent.get(), name.c_str(), permissions) != 0 && errno != EEXIST) {
    throw SystemError(errno, location);
  }
  changed(above);
  folder = findBeneath(parent.get(), name, O_PATH | O_DIRECTORY);
  if (!folder) throw SystemError(ENOENT, location);
  return folder;
}

void OutputFolder::changed(const std::string& folder) {
  if (durable_) changed_.insert(folder);
}

}  // namespace orv
