#ifndef WAYLAND_GENERATIONRUN_HPP
#define WAYLAND_GENERATIONRUN_HPP

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <varn/varn_filepackaging.hpp>

#include "GeneratedFile.hpp"
#include "ProtocolFile.hpp"

namespace wayland {

// One run of the generator: all files of all protocols, in one repository.
class GenerationRun {
 public:
  // `folder` is where the files will go.
  explicit GenerationRun(const std::string& folder);
  GenerationRun(const GenerationRun&) = delete;
  GenerationRun& operator=(const GenerationRun&) = delete;
  ~GenerationRun() = default;

  // Makes and fills the files of `protocol`. Returns a warning for each file name that another one
  // equals but for letter case. Throws ProtocolError when one of the files would have the very name
  // of another protocol's ("a_client" has the "a-client-protocol.h" of "a"); nothing is made then.
  std::vector<std::string> add(const Protocol& protocol);

  // Creates the folder if it is missing and writes all files. They are renamed only when every one
  // is complete. Throws std::system_error with the path; no partial file is left then.
  void write();

  // Prints the table of the files that were written. Throws std::system_error.
  void report(FILE* stream);

 private:
  std::string folder_;
  Varn::VarnFileRepository repository_;
  Varn::VarnFilePackagingManager manager_;
  GeneratedFile report_;
  std::vector<std::unique_ptr<ProtocolFile>> files_;
  std::vector<WrittenSize> sizes_;  // of files_, once they are written
  int protocols_ = 0;
};

}  // namespace wayland

#endif
