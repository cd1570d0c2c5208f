// Parsing of the run subcommand's command and checkbox options.
#include <gtest/gtest.h>

#include <tuple>

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

TEST(CommandArg, CheckboxOptionsHoldForTheCommandsAfterThem) {
  auto cmds = commandsInOrder({{"command", "136"}, {"color", "off"}, {"command", "137+ctrl"}, {"opacity", "off"},
                                {"command", "138"}, {"color", "on"}, {"command", "139+alt"}});
  // id, alt, ctrl, colour, opacity of each; both checkboxes start on.
  const std::tuple<int, bool, bool, bool, bool> want[] = {
      {136, false, false, true, true}, {137, false, true, false, true}, {138, false, false, false, false},
      {139, true, false, true, false}};
  ASSERT_EQ(cmds.size(), 4u);
  for (size_t k = 0; k < 4; ++k)
    EXPECT_EQ(std::make_tuple(cmds[k].id, cmds[k].alt, cmds[k].ctrl, cmds[k].useColor, cmds[k].useOpacity), want[k])
        << k;
}

TEST(CommandArg, BadCheckboxValuesAndPoints) {
  for (auto [option, value] : {std::pair{"color", "yes"}, {"opacity", ""}, {"command", "x"}})
    EXPECT_THROW(commandsInOrder({{option, value}}), std::invalid_argument) << option;
  EXPECT_TRUE(commandsInOrder({{"color", "OFF"}}).empty());
  EXPECT_EQ(lb::app::parsePoint("10,20"), std::make_pair(10, 20));
  for (const char* bad : {"10", "10,y", ",5"}) EXPECT_FALSE(lb::app::parsePoint(bad)) << bad;
}

}  // namespace
