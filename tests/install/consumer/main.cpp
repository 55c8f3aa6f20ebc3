// A program that uses the installed package only.

#include <cstdio>

#include <orbel/Diagnostics.hpp>
#include <varn/varn_filepackaging.hpp>

int main() {
  Varn::VarnFileRepository repository;
  repository.createGenericFile("model.c");
  Varn::FileRepOrvBridge& bridge = repository.orvBridge();
  bridge.addSectionContent(0, "Functions", "int model_step(void) { return 1; }\n");
  bridge.writeSection(0, "Functions", stdout);
  try {
    bridge.clearSection(1, "Functions");
  } catch (const orbel::HostException& error) {
    std::printf("%s\n", error.identifier().c_str());
  }
  return 0;
}
