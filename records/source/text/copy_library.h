// Finds and reads the files that COPY names.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "records/source/text/source_set.h"

namespace records {

// Reads a whole file. Nothing, and why in `why`, when it cannot be read or is too large.
std::optional<std::string> read_text_file(const std::string& path, std::string& why);

// Folder part of a path: "" when it has none, "/" for the root.
std::string folder_of(const std::string& path);

class CopyLibrary {
  public:
    CopyLibrary(std::vector<std::string> folders, int tab_width);

    // Path of the copybook `name`, looked for in `first_folder`, then in the search path. `library`
    // (may be empty) is a folder below these. Nothing when there is none.
    std::optional<std::string> find(const std::string& name, const std::string& library,
                                    const std::string& first_folder);

    // The file at a path that `find` gave; null, and why in `why`, when it cannot be read.
    std::shared_ptr<const SourceFile> read(const std::string& path, std::string& why);

    const std::vector<std::string>& folders() const { return folders_; }

    // The folders that could not be looked into, each after "; " and with the reason.
    const std::string& unread_folders() const { return unread_folders_; }

  private:
    // File and folder names of a folder by their lower-case form.
    using Listing = std::unordered_map<std::string, std::string>;
    const Listing& list(const std::string& folder);
    void note_unread(const std::string& folder, std::error_code error);
    std::optional<std::string> find_entry(const std::string& folder, const std::string& name,
                                          bool want_folder);
    std::optional<std::string> look_up(const std::string& name, const std::string& library,
                                       const std::string& first_folder);
    std::optional<std::string> find_in_folder(const std::string& folder, const std::string& name);

    std::vector<std::string> folders_;
    int tab_width_;
    std::string unread_folders_;
    std::map<std::string, Listing> listings_;
    std::map<std::tuple<std::string, std::string, std::string>, std::optional<std::string>> found_;
    std::map<std::string, std::shared_ptr<const SourceFile>> files_;
};

}  // namespace records
