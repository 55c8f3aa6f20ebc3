#include <gtest/gtest.h>

#include <varn/VarnFilePackagingManager.hpp>

namespace Varn {
namespace {

// The index returned for `key`, and the files afterwards.
std::string ask(VarnFilePackagingOrvBridge& bridge, const VarnFileRepository& repository,
                const std::string& key) {
  std::string result;
  try {
    result = std::to_string(bridge.getFileRecIndexForKey(key));
  } catch (const boost::bad_function_call&) {
    result = "bad call";
  }
  for (const VarnFile* file : repository.getFileList()) {
    result += " '" + file->getNameAscii() + "' " + file->getGroup() + ' ' + file->getType();
  }
  return result;
}

TEST(VarnFilePackagingManager, FindsOrMakesTheFileOfAKey) {
  VarnFileRepository repository;
  VarnFilePackagingManager manager(&repository);
  VarnFilePackagingOrvBridge copy = manager.orvBridge();
  const struct {
    const char* key;
    const char* answer;
  } calls[] = {
      {"mdl_hdr", "0 '' model SystemHeader"},
      {"mdl_src", "0 '' model SystemBody"},
      {"mdl_hdr_incl", "bad call '' model SystemBody 'Includes'  "},
      {"mdl_src_incl", "bad call '' model SystemBody 'Includes'  "},
      {"nonsense", "bad call '' model SystemBody 'Includes'  "},
      {"nonsense", "bad call '' model SystemBody 'Includes'  "},
      {"qz_machine_fcn_defn", "bad call '' model SystemBody 'Includes'   'Functions'  "},
      {"mdl_hdr", "2 '' model SystemHeader 'Includes'   'Functions'  "},
  };
  for (const auto& [key, answer] : calls) {
    EXPECT_EQ(answer, ask(manager.orvBridge(), repository, key)) << key;
  }
  EXPECT_EQ("2 '' model SystemBody 'Includes'   'Functions'  ", ask(copy, repository, "mdl_src"));

  VarnFileRepository otherRepository;
  copy = VarnFilePackagingManager(&otherRepository).orvBridge();
  EXPECT_EQ("bad call 'ExternData'  ",
            ask(copy, otherRepository, "qz_machine_public_extern_data_decl"));
  EXPECT_EQ("1 'ExternData'   '' model SystemHeader", ask(copy, otherRepository, "mdl_hdr"));
}

}  // namespace
}  // namespace Varn
