#include <gtest/gtest.h>

#include "tests/Bench.h"

namespace {

Step Item(const std::string& kind, const std::string& id, const std::string& last) {
  return Ntf("ADD_" + kind + "_ITEM", {{"id", id}, {"type", "t"}, {"text", "x"}, {"last", last}});
}

std::string Items(const std::string& ids) {
  std::string xml;
  for (const char id : ids) xml += std::string("<item><id>") + id + "</id><type>t</type><text>x</text></item>";
  return "<items>" + xml + "</items>";
}

}  // namespace

TEST(Browsing, SendsTheHeldDocumentWithEachLastItem) {
  const Step menu = Ntf("NEW_MENU", {{"title", "M"}, {"num_items", "3"}});
  const Step list =
      Ntf("NEW_LIST", {{"clear", "c"}, {"first", "20"}, {"num_items", "n"}, {"total_items", "all"}, {"title", "L"}});
  const std::string menuHead = "ui <menu_list><title>M</title><num_items>3</num_items>";
  const std::string listHead =
      "ui <list><title>L</title><total_items>all</total_items><num_items>n"
      "</num_items><first_item>20</first_item><clear>c</clear>";
  Check({
      {"items before any header", {Item("MENU", "a", "True"), Item("LIST", "a", "True")}, {}},
      {"a menu",
       {menu, Item("MENU", "a", "False"), Item("MENU", "b", "False"), Item("MENU", "c", "True")},
       {menuHead + Items("abc") + "</menu_list>"}},
      {"a list", {list, Item("LIST", "a", "False"), Item("LIST", "b", "True")}, {listHead + Items("ab") + "</list>"}},
      {"an item goes to whatever is held",
       {menu, Item("LIST", "a", "True"), list, Item("MENU", "b", "True")},
       {menuHead + Items("a") + "</menu_list>", listHead + Items("b") + "</list>"}},
      {"nothing but True is last",
       {menu, Item("MENU", "a", "true"), Item("MENU", "b", "TRUE"), Item("MENU", "c", "1"), Item("MENU", "d", ""),
        Item("MENU", "e", "True "), Item("MENU", "f", "True")},
       {menuHead + Items("abcdef") + "</menu_list>"}},
      {"held after it was sent",
       {list, Item("LIST", "a", "True"), Item("LIST", "b", "False"), Item("LIST", "c", "True")},
       {listHead + Items("a") + "</list>", listHead + Items("abc") + "</list>"}},
      {"a header drops what was held",
       {list, Item("LIST", "a", "False"), menu, Item("MENU", "b", "True")},
       {menuHead + Items("b") + "</menu_list>"}},
      {"reset and bindings leave it alone",
       {list, Item("LIST", "a", "False"), Bind({}), Unbind(), Item("LIST", "b", "True")},
       {listHead + Items("ab") + "</list>"}},
      {"missing parameters",
       {Ntf("NEW_MENU"), Ntf("ADD_MENU_ITEM", {{"last", "True"}})},
       {"ui "
        "<menu_list><title/><num_items/><items><item><id/><type/><text/></item></items></"
        "menu_list>"}},
      {"a list without parameters",
       {Ntf("NEW_LIST"), Ntf("ADD_LIST_ITEM", {{"last", "True"}, {"text", "v"}})},
       {"ui <list><title/><total_items/><num_items/><first_item/><clear/><items><item><id/><type/>"
        "<text>v</text></item></items></list>"}},
  });
}

TEST(Browsing, DestroysADriverThatHoldsAList) {
  Bench bench;
  bench(Ntf("NEW_LIST"));
  bench(Item("LIST", "a", "False"));
}
