// Parsing of the run subcommand's command and checkbox options.
#include <gtest/gtest.h>

#include "app/CommandArg.h"

namespace {
using lb::app::commandsInOrder;
using lb::app::parseCommandArg;

TEST(CommandArg, IdWithModifiersInAnyOrder) {
  // 171 and -3 lie outside the table: they parse, and run nothing.
  const struct { const char* text; int id; bool alt, ctrl; } cases[] = {
      {"138", 138, false, false}, {"136+ctrl+alt", 136, true, true}, {"136+alt+ctrl", 136, true, true},
      {"136+ALT+Ctrl", 136, true, true}, {"165+ctrl", 165, false, true}, {"171", 171, false, false},
      {"-3", -3, false, false}};
  for (const auto& c : cases) {
    auto a = parseCommandArg(c.text);
    ASSERT_TRUE(a) << c.text;
    EXPECT_EQ(std::make_tuple(a->id, a->alt, a->ctrl), std::make_tuple(c.id, c.alt, c.ctrl)) << c.text;
  }
}

TEST(CommandArg, BadValuesAreRejectedWithAReason) {
  for (const char* text : {"", "abc", "+alt", "138+", "138+shift", "138+alt+alt", "138++alt",
                           "138 +alt", "13 8", "99999999999", "138+ctrl+ctrl", "0x8a"}) {
    std::string why;
    EXPECT_FALSE(parseCommandArg(text, &why)) << text;
    EXPECT_FALSE(why.empty()) << text;
  }
}

TEST(CommandArg, CheckboxOptionsHoldForTheCommandsAfterThem) {
  auto cmds = commandsInOrder({{"command", "136"}, {"color", "off"}, {"command", "137+ctrl"}, {"opacity", "off"},
                                {"command", "138"}, {"color", "on"}, {"command", "139+alt"}});
  ASSERT_EQ(cmds.size(), 4u);
  EXPECT_TRUE(cmds[0].useColor && cmds[0].useOpacity);  // both start on
  EXPECT_FALSE(cmds[1].useColor);
  EXPECT_TRUE(cmds[1].useOpacity);
  EXPECT_FALSE(cmds[2].useColor || cmds[2].useOpacity);
  EXPECT_TRUE(cmds[3].useColor);
  EXPECT_FALSE(cmds[3].useOpacity);
  EXPECT_EQ(cmds[1].id, 137);
  EXPECT_TRUE(cmds[1].ctrl);
  EXPECT_TRUE(cmds[3].alt);
}

TEST(CommandArg, BadCheckboxValuesAndPoints) {
  EXPECT_THROW(commandsInOrder({{"color", "yes"}}), std::invalid_argument);
  EXPECT_THROW(commandsInOrder({{"opacity", ""}}), std::invalid_argument);
  EXPECT_THROW(commandsInOrder({{"command", "x"}}), std::invalid_argument);
  EXPECT_TRUE(commandsInOrder({{"color", "OFF"}}).empty());
  EXPECT_EQ(lb::app::parsePoint("10,20"), std::make_pair(10, 20));
  EXPECT_FALSE(lb::app::parsePoint("10"));
  EXPECT_FALSE(lb::app::parsePoint("10,y"));
  EXPECT_FALSE(lb::app::parsePoint(",5"));
}

}  // namespace
