#include "zim0lang/stringloader.h"

namespace zim {
namespace {

CStringLoader* g_loader = nullptr;

struct Message {
  long id;
  const Char* text;
};

constexpr Message kMessages[] = {
    {10000, u"The drawing file cannot be read."},
    {10001, u"The drawing file cannot be opened."},
    {10002, u"There is not enough memory."},
    {10003, u"The drawing file holds an unknown section."},
    {10004, u"The drawing file ends unexpectedly."},
    {10005, u"A numeric value is missing."},
    {10006, u"The structure of the drawing file is wrong."},
    {10007, u"The drawing file holds an unknown table."},
    {10008, u"A value is out of range."},
    {10009, u"A group code is not valid."},
    {10020, u"An entity lacks data that it needs."},
    {10021, u"A layer names a linetype that does not exist."},
    {10022, u"The font of a text style cannot be found."},
    {10023, u"A block that is referred to does not exist or would contain itself."},
    {10024, u"BYLAYER"},
    {10025, u"BYBLOCK"},
    {10026, u"red"},
    {10027, u"yellow"},
    {10028, u"green"},
    {10029, u"cyan"},
    {10030, u"blue"},
    {10031, u"magenta"},
    {10032, u"white"},
    {10034, u"The drawing file was written by a newer version than can be read."},
};

}  // namespace

CStringLoader* CStringLoader::setLoader(CStringLoader* loader) {
  CStringLoader* const previous = g_loader;
  g_loader = loader;
  return previous;
}

bool CStringLoader::find(long id, WString& text) {
  text = WString();
  if (g_loader && g_loader->load(id, text)) return true;
  for (const Message& message : kMessages) {
    if (message.id != id) continue;
    text = message.text;
    return true;
  }
  return false;
}

}  // namespace zim
