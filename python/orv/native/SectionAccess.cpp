#include "python/orv/native/SectionAccess.hpp"

#include <utility>

#include <boost/make_shared.hpp>

#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnFile.hpp>

#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {
namespace {

using Varn::VarnFileSectionKind;

// From this size on, copying a text costs more than a fragment of its own.
constexpr std::size_t largeText = std::size_t{1} << 16;

bool hasBridgeName(VarnFileSectionKind kind) { return kind != Varn::FORWARD_DECLS_SECTION; }

const std::string& bridgeName(VarnFileSectionKind kind) {
  return sectionNames()[static_cast<std::size_t>(kind)];
}

}  // namespace

void addSectionText(PackagedFiles& files, int file, VarnFileSectionKind kind, std::string& text) {
  if (!hasBridgeName(kind)) {
    files.file(file).getFileSection(kind).addContent_cstr(text.c_str());
  } else if (text.size() < largeText) {
    files.bridge().addSectionContent(file, bridgeName(kind), text.c_str());
  } else {
    auto fragment = boost::make_shared<Varn::StringFileSectionFragment>(std::move(text));
    files.bridge().addSectionContent(file, bridgeName(kind), std::move(fragment));
    text.clear();
  }
}

void declareCustomSection(PackagedFiles& files, int file, VarnFileSectionKind kind,
                          const std::string& name) {
  if (hasBridgeName(kind)) {
    files.bridge().addCustomSection(file, bridgeName(kind), name);
  } else {
    files.file(file).getCustomContent().addCustomSection(name, kind);
  }
}

void placeCustomSections(PackagedFiles& files, int file) {
  Varn::VarnFile& holder = files.file(file);
  for (int i = 0; i < textSection; ++i) {
    const auto kind = static_cast<VarnFileSectionKind>(i);
    if (!holder.hasSection(kind)) continue;
    if (hasBridgeName(kind)) {
      files.bridge().appendMissingTokens(file, bridgeName(kind));
    } else {
      holder.getCustomContent().appendMissingTokens(holder.getFileSection(kind), kind);
    }
    if (files.trace) files.trace->appendMissing(file, kind);
  }
}

}  // namespace orv
