// Reports on live blocks, for the embedding program and at the end of the process.
#include "host/runtime/memory/memory_report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string_view>

#include "host/runtime/memory/block_store.h"
#include "host/runtime/memory/sites.h"
#include "platform/environment.h"

namespace host {

namespace {

struct SequencedBlock {
    std::uint64_t sequence;
    BlockInfo info;
};

void collect(const memory::BlockHeader* header, void* context) {
    const memory::Origin& origin = memory::site(header->site).origin;
    static_cast<std::vector<SequencedBlock>*>(context)->push_back(
        {header->sequence,
         {memory::payload_of(const_cast<memory::BlockHeader*>(header)), memory::block_size(header),
          origin.source, origin.line, origin.description}});
}

const char* text_or_blank(const char* text) {
    return text != nullptr ? text : "";
}

[[gnu::destructor]] void report_at_exit() {
    const char* wanted = platform::trusted_environment_variable("SXML_HOST_LEAKS");
    if (wanted == nullptr || std::string_view(wanted) != "1") return;
    std::fputs(leak_report().c_str(), stderr);
}

}  // namespace

std::vector<BlockInfo> live_blocks() {
    std::vector<SequencedBlock> blocks;
    memory::visit_live_blocks(collect, &blocks);
    std::ranges::sort(blocks, {}, &SequencedBlock::sequence);
    std::vector<BlockInfo> result;
    result.reserve(blocks.size());
    for (const SequencedBlock& block : blocks) result.push_back(block.info);
    return result;
}

std::vector<DescriptionTotal> description_totals() {
    std::map<std::string, DescriptionTotal> totals;
    for (const memory::Site& site : memory::sites()) {
        const std::string description = text_or_blank(site.origin.description);
        DescriptionTotal& total = totals[description];
        total.description = description;
        total.live_blocks += site.live_blocks;
        total.live_bytes += site.live_bytes;
        total.all_blocks += site.all_blocks;
    }
    std::vector<DescriptionTotal> result;
    result.reserve(totals.size());
    for (const auto& [description, total] : totals) result.push_back(total);
    return result;
}

std::string leak_report() {
    const std::vector<BlockInfo> blocks = live_blocks();
    std::size_t bytes = 0;
    for (const BlockInfo& block : blocks) bytes += block.size;
    std::string report = "sxml: " + std::to_string(blocks.size()) + " live blocks, " +
                         std::to_string(bytes) + " bytes\n";
    for (const BlockInfo& block : blocks) {
        report += "  " + std::to_string(block.size) + " bytes, " + text_or_blank(block.source) +
                  " line " + std::to_string(block.line) + ", \"" +
                  text_or_blank(block.description) + "\"\n";
    }
    return report;
}

}  // namespace host
