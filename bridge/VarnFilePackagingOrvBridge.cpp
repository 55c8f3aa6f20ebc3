#include "varn/VarnFilePackagingOrvBridge.hpp"

#include <cassert>
#include <optional>

#include <varn/VarnFileRepository.hpp>

namespace Varn {
namespace {

struct PackagingRow {
  const char* key;
  const char* fileName;
  const char* sectionName;
};

// Placeholders: files are found by the section column.
constexpr const char* headerFileName = "foo";
constexpr const char* sourceFileName = "foo";

// clang-format off
constexpr PackagingRow defaultPackaging[] = {
    {"mdl_hdr", headerFileName, ""},
    {"mdl_src", sourceFileName, ""},
    {"mdl_hdr_incl", headerFileName, "Includes"},
    {"qz_machine_public_extern_data_decl", headerFileName, "ExternData"},
    {"qz_chart_data_basedOnUserType_typedef", headerFileName, "Typedefs"},
    {"mdl_fcn_prototype", headerFileName, "FcnPrototypes"},
    {"cpp_class_decl", headerFileName, "Declarations"},
    {"mdl_fcn_decl", headerFileName, "Declarations"},
    {"mdl_src_incl", sourceFileName, "Includes"},
    {"mdl_src_define", sourceFileName, "Defines"},
    {"mdl_src_userTop", sourceFileName, "UserTop"},
    {"mdl_data_defn", sourceFileName, "Definitions"},
    {"mdl_profiler_data_defn", sourceFileName, "Definitions"},
    {"qz_machine_data_defn", sourceFileName, "Definitions"},
    {"mdl_fcn_defn", sourceFileName, "Functions"},
    {"qz_machine_fcn_defn", sourceFileName, "Functions"},
    {"mdl_src_userBottom", sourceFileName, "UserBottom"},
};
// clang-format on

void setModelAttributes(VarnFile& file, const char* type) {
  file.setGroup("model");
  file.setCreator("Plexar");
  file.setType(type);
}

}  // namespace

VarnFilePackagingOrvBridge::VarnFilePackagingOrvBridge(VarnFilePackagingManager* manager,
                                                       VarnFileRepository* repository)
    : manager_(manager), repository_(repository) {
  assert(repository != nullptr);
  constructDefaultFilePackagingTable();
  attributeSetters_["mdl_hdr"] = &VarnFilePackagingOrvBridge::setModelHeaderAttributes;
  attributeSetters_["mdl_src"] = &VarnFilePackagingOrvBridge::setModelSourceAttributes;
}

VarnFilePackagingOrvBridge::VarnFilePackagingOrvBridge(const VarnFilePackagingOrvBridge&) = default;

VarnFilePackagingOrvBridge& VarnFilePackagingOrvBridge::operator=(
    const VarnFilePackagingOrvBridge& source) {
  VarnFilePackagingOrvBridge copy(source);
  packagingTable_.swap(copy.packagingTable_);
  attributeSetters_.swap(copy.attributeSetters_);
  manager_ = copy.manager_;
  repository_ = copy.repository_;
  return *this;
}

VarnFilePackagingOrvBridge::~VarnFilePackagingOrvBridge() = default;

void VarnFilePackagingOrvBridge::constructDefaultFilePackagingTable() {
  for (const PackagingRow& row : defaultPackaging) {
    packagingTable_.emplace(row.key, FileRecord(row.fileName, row.sectionName));
  }
}

std::size_t VarnFilePackagingOrvBridge::getFileRecIndexForKey(const std::string& key) {
  const std::string& fileName = packagingTable_[key].second;
  // What may find no memory comes before the file is made: a new entry, and the error.
  const AttributeSetter& setAttributes = attributeSetters_[key];
  std::optional<boost::bad_function_call> error;
  if (setAttributes.empty()) error.emplace();
  VarnFile* file = repository_->findFileByName(fileName);
  if (file == nullptr) file = &repository_->createGenericFile(fileName);
  if (error) throw boost::bad_function_call(*error);
  setAttributes(this, file);
  return repository_->getFileList().size() - 1;
}

void VarnFilePackagingOrvBridge::setModelHeaderAttributes(VarnFile* file) {
  setModelAttributes(*file, "SystemHeader");
}

void VarnFilePackagingOrvBridge::setModelSourceAttributes(VarnFile* file) {
  setModelAttributes(*file, "SystemBody");
}

}  // namespace Varn
