// The text of a compilation: one file with everything that COPY brings in, replaced and cleaned of
// what is not a COBOL data description.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "records/copybook.h"
#include "records/source/text/copy_library.h"
#include "records/source/text/replacing.h"
#include "records/source/text/source_line.h"
#include "records/source/text/text_word.h"

namespace records {

class TextManipulator {
  public:
    TextManipulator(const CopybookOptions& options, SourceSet& sources, TextArena& arena,
                    Diagnostics& diagnostics);

    // Gives the words of the file after COPY, REPLACE and EXEC, up to the PROCEDURE DIVISION.
    // Mistakes stand in the words as `broken`, to be reported where that text matters.
    std::vector<TextWord> expand(std::shared_ptr<const SourceFile> file);
    // The files read, each with the format that it was read in.
    const std::vector<ReadFile>& read_files() const { return read_files_; }

  private:
    using Words = std::vector<TextWord>;
    Words expand_file(std::shared_ptr<const SourceFile> file, Position from,
                      SourceFormat inherited);
    Words scan(std::uint32_t inclusion, SourceFormat& format);
    std::size_t expand_copy(const Words& words, std::size_t at, SourceFormat format, Words& out);
    std::size_t expand_exec(const Words& words, std::size_t at, SourceFormat format, Words& out);
    void include(const std::string& name, const std::string& library, const TextWord& statement,
                 SourceFormat format, std::vector<ReplaceRule> rules, Words& out);
    std::size_t read_replace(const Words& words, std::size_t at, Words& out,
                             std::unique_ptr<Replacer>& replacer);
    void report_exhausted(const Replacer* replacer, const TextWord& word, Words& out);
    Words obey_replace(Words words);
    void break_at(const TextWord& word, std::string message, Words& out);

    const CopybookOptions& options_;
    SourceSet& sources_;
    TextArena& arena_;
    Diagnostics& diagnostics_;
    CopyLibrary library_;
    std::vector<ReadFile> read_files_;
    std::vector<std::string> open_files_;  // being expanded, outermost first
    std::size_t words_left_;
    std::size_t bytes_left_;  // of the files read, each inclusion counted
    bool stopped_ = false;    // at the PROCEDURE DIVISION, or at a limit
};

}  // namespace records
