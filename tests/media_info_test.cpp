#include "driver/media.h"
#include "host/TqXML.h"

#include <gtest/gtest.h>

TEST(MediaInfo, AddsItsTextsWhenItIsValidAndItsImageWhenAskedTo) {
  const std::tuple<media::MediaInfo, bool, const char*> cases[] = {
      {{false, "1", "2", "3", "i"}, true, "<n/>"},
      {{true, "1", "2", "3", "i"}, false, "<n><label_1>1</label_1><label_2>2</label_2><label_3>3</label_3></n>"},
      {{true, "", "2", "", " \"i"}, true, "<n><label_2>2</label_2><img>i</img></n>"},
      {{true, "1", "", "3", ""}, true, "<n><label_1>1</label_1><label_3>3</label_3></n>"},
  };
  for (const auto& [info, image, xml] : cases) {
    const auto node = TqXML::CreateXmlNode("n", "");
    info.AddToINode(node.get(), image);
    EXPECT_EQ(node->GetXmlString(), xml);
  }
}
