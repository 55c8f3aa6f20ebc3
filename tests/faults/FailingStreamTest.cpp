#include <gtest/gtest.h>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFileRepository.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

using Texts = std::vector<std::string>;

TEST(FailingStream, IsTheCallersAndLosesNothing) {
  VarnFileRepository repository;
  FileRepOrvBridge& bridge = repository.orvBridge();
  CustomContents& custom = repository.createGenericFile("a.c").getCustomContent();
  bridge.addCustomSection(0, "Typedefs", "A");
  custom.addContentToSection("A", "custom;");
  for (const char* text : {"one;", "two;"}) bridge.addSectionContent(0, "Typedefs", text);
  bridge.setAttribute(0, "RequiredIncludes", "a.h");

  const RecordingStream failing(2);
  bridge.writeSection(0, "Typedefs", failing.get());
  EXPECT_EQ((Texts{"one;", "custom;"}), failing.writes()) << "it goes on after a failed write";
  EXPECT_NE(0, std::ferror(failing.get()));
  const RecordingStream failingAtOnce(1);
  bridge.writeSection(0, "Includes", failingAtOnce.get());
  EXPECT_NE(0, std::ferror(failingAtOnce.get()));

  const RecordingStream good;
  bridge.writeSection(0, "Typedefs", good.get());
  bridge.writeSection(0, "Includes", good.get());
  EXPECT_EQ((Texts{"one;", "two;", "custom;", "\n#include \"a.h\"\n"}), good.writes());
}

}  // namespace
}  // namespace Varn
