// Commands that add entities to model space, with the current layer, linetype, color and style.
#include <cmath>
#include <iterator>
#include <utility>

#include "commandkinds.h"
#include "degrees.h"
#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

using Points = std::vector<PNT_3D>;
using NewEnts = std::vector<std::unique_ptr<CEnt>>;

Points resolved(Editing& editing, const std::vector<CommandPoint>& points) {
  Points result;
  for (const CommandPoint& point : points) result.push_back(point.from(editing.last));
  return result;
}

// Adds what was drawn, which is selected then.
StepOutcome addDrawn(Editing& editing, NewEnts made, const std::string& what) {
  std::vector<CEnt*> chosen;
  const double scale = editing.data.getVars().getCurLtypeScale();
  for (std::unique_ptr<CEnt>& ent : made) {
    if (ent && scale != 1) {
      ENT_TRAITS traits = ent->getTraits();
      traits.ltypeScale = scale;
      ent->setTraits(traits);
    }
    if (!addEnt(editing, std::move(ent), chosen)) return StepOutcome::noMemory();
  }
  editing.chosen = std::move(chosen);
  return StepOutcome::done(what + " drawn");
}

StepOutcome addDrawn(Editing& editing, CEnt* made, const std::string& what) {
  NewEnts ents;
  ents.emplace_back(made);
  return addDrawn(editing, std::move(ents), what);
}

bool takeClose(CommandWords& words) { return words.take("close") || words.take("c"); }

StepOutcome drawLines(Editing& editing, const Points& points, bool isClosed) {
  NewEnts made;
  const std::size_t count = isClosed ? points.size() : points.size() - 1;
  for (std::size_t i = 0; i < count; ++i)
    made.emplace_back(
        createEntLine(editing.data, LINE_3D(points[i], points[(i + 1) % points.size()]), 0));
  return addDrawn(editing, std::move(made), counted(count, "line", "lines"));
}

StepOutcome drawCircle(Editing& editing, bool isMade, const CIRCLE_3D& circle) {
  if (!isMade) return StepOutcome::failed("there is no circle through these points");
  return addDrawn(editing, createEntCircle(editing.data, circle, 0), "circle");
}

StepOutcome drawArc(Editing& editing, bool isMade, const ARC_3D& arc) {
  if (!isMade) return StepOutcome::failed("there is no arc through these points");
  return addDrawn(editing, createEntArc(editing.data, arc, 0), "arc");
}

struct PolylineVertex {
  CommandPoint point;
  double bulge = 0;  // of the segment that begins here
};

// Takes "b=BULGE" if it follows.
bool takeBulge(CommandWords& words, double& bulge) {
  const auto text = words.takeValue("b");
  if (!text) return false;
  const auto number = numbersIn(*text);
  if (!number || number->size() != 1) words.complain("'" + *text + "' is not a bulge like 0.5");
  bulge = number ? number->front() : 0;
  return true;
}

std::vector<PolylineVertex> takeVertexes(CommandWords& words) {
  std::vector<PolylineVertex> vertexes;
  while (words.isPoint()) {
    vertexes.push_back({words.point()});
    takeBulge(words, vertexes.back().bulge);
  }
  return vertexes;
}

StepOutcome drawPolyline(Editing& editing, const std::vector<PolylineVertex>& vertexes,
                         double width, bool isClosed) {
  std::vector<BULGED_VERTEX> made;
  for (const PolylineVertex& vertex : vertexes) {
    const PNT_3D p = vertex.point.from(editing.last);
    made.push_back({p.x, p.y, p.z, width, width, vertex.bulge, 0});
  }
  const bool isPatternContinued = editing.data.getVars().isPLineGen();
  const int flags =
      (isClosed ? CEntPolyline::kClosed : 0) | (isPatternContinued ? CEntPolyline::kLtGen : 0);
  CEntPolyline* polyline = createEntPolyline(editing.data, flags, 0, 0);
  if (polyline)
    polyline->setBulgedVertexes(editing.data.getHandleGestor(), editing.data.getEntFactory(),
                                made.data(), made.size());
  return addDrawn(editing, polyline, "polyline");
}

long takeJustification(CommandWords& words) {
  struct Name {
    const char* text;
    long justification;
  };
  constexpr Name kNames[] = {{"left", 0}, {"center", 1}, {"right", 2},  {"tl", 3}, {"tc", 4},
                             {"tr", 5},   {"ml", 6},     {"middle", 7}, {"mc", 7}, {"mr", 8},
                             {"bl", 9},   {"bc", 10},    {"br", 11}};
  for (const Name& name : kNames)
    if (words.take(name.text)) return name.justification;
  return 0;
}

StepOutcome drawText(Editing& editing, TEXT_3D text, const PNT_3D& at) {
  CStyle* style = getCurStyle(editing.data);
  CTextContext context = text.getContext();
  if (style) {
    context.setOblique(style->getOblique());
    context.setWidthScale(style->getWidthScale());
  }
  text.setContext(context);
  text.setStyle(style);
  static_cast<PNT_3D&>(text) = at;
  return addDrawn(editing, createEntText(editing.data, text, 0), "text");
}

using Values = std::vector<std::pair<zim::WString, zim::WString>>;  // by tag

Values takeValues(CommandWords& words) {
  Values values;
  while (!words.isAtEnd()) {
    const std::string word = words.word("a value");
    const std::size_t equals = word.find('=');
    if (equals == word.npos) words.complain("'" + word + "' is not TAG=VALUE");
    values.emplace_back(zim::WString::fromUtf8(word.substr(0, equals)),
                        zim::WString::fromUtf8(equals == word.npos ? "" : word.substr(equals + 1)));
  }
  return values;
}

// Gives an insert the attributes that its block defines; returns what is wrong with the values.
std::string addAttributes(Editing& editing, const CBlock& block, Values values,
                          CEntInsert& insert) {
  constexpr long kConstant = 2;
  for (CBlock::CAttdefIterator at(block); *at; ++at) {
    const CEntAttdef& def = **at;
    if (def.getFlags() & kConstant) continue;
    const auto given = std::find_if(values.begin(), values.end(), [&](const auto& value) {
      return zim::equalsIgnoreCase(value.first, def.getTag());
    });
    const bool isGiven = given != values.end();
    insert.add(createEntAttrib(editing.data, isGiven ? given->second : def.getValue(), def, 0));
    if (isGiven) values.erase(given);
  }
  if (values.empty()) return {};
  return "block " + block.getName().toUtf8() + " has no attribute " + values.front().first.toUtf8();
}

struct InsertRequest {
  std::string name;
  CommandPoint point;
  PNT_3D scale{1, 1, 1};
  double degrees = 0;
  Values values = {};
};

StepOutcome drawInsert(Editing& editing, const InsertRequest& request) {
  CBlock* block = editing.data.getBlockTable().get(zim::WString::fromUtf8(request.name));
  if (!block || block->isSheet()) return StepOutcome::failed("there is no block " + request.name);
  if (block->isXRef())
    return StepOutcome::failed(request.name +
                               " is an external reference, which vek0 xrefs attaches");
  std::unique_ptr<CEntInsert> insert(createEntInsert(
      editing.data, *block, request.point.from(editing.last), request.scale.x, request.scale.y,
      request.scale.z, request.degrees * kRadiansPerDegree, 1, 1, 0, 0, 0));
  if (!insert) return StepOutcome::noMemory();
  const std::string problem = addAttributes(editing, *block, request.values, *insert);
  if (!problem.empty()) return StepOutcome::failed(problem);
  return addDrawn(editing, insert.release(), "insert of " + block->getName().toUtf8());
}

PNT_3D takeScales(CommandWords& words) {
  if (words.isPoint()) {
    const PNT_3D scale = words.point().value;
    return PNT_3D(scale.x, scale.y, scale.z != 0 ? scale.z : 1);
  }
  const double scale = words.numberOr(1);
  return PNT_3D(scale, scale, scale);
}

}  // namespace

EditStep readLineCommand(CommandWords& words) {
  const auto points = words.points();
  const bool isClosed = takeClose(words);
  if (points.size() < 2) words.complain("a line needs two points like 0,0 10,5");
  return [=](Editing& editing) {
    return drawLines(editing, resolved(editing, points), isClosed && points.size() > 2);
  };
}

EditStep readCircleCommand(CommandWords& words) {
  const std::size_t count = words.take("2p") ? 2 : words.take("3p") ? 3 : 1;
  if (count > 1) {
    const auto points = words.points();
    if (points.size() != count) words.complain(std::to_string(count) + " points are needed");
    return [=](Editing& editing) {
      const Points p = resolved(editing, points);
      CIRCLE_3D circle;
      const bool isMade =
          p.size() == 2 ? CreateCircle(p[0], p[1], circle) : CreateCircle(p[0], p[1], p[2], circle);
      return drawCircle(editing, isMade, circle);
    };
  }
  const CommandPoint center = words.point();
  const bool isThrough = words.isPoint();
  const CommandPoint through = isThrough ? words.point() : CommandPoint();
  const double radius = isThrough ? 0 : words.positive("the radius");
  return [=](Editing& editing) {
    const PNT_3D c = center.from(editing.last);
    const double r = isThrough ? c.PNT_2D::dist(through.from(editing.last)) : radius;
    CIRCLE_3D circle;
    const bool isMade = CreateCircle(c, r, circle);
    return drawCircle(editing, isMade, circle);
  };
}

EditStep readArcCommand(CommandWords& words) {
  const bool isCentered = words.take("c") || words.take("center");
  const auto points = words.points();
  if (isCentered && points.size() == 1) {
    const double radius = words.positive("the radius");
    const double start = words.number("the angle of the start");
    const double end = words.number("the angle of the end");
    return [=](Editing& editing) {
      const PNT_3D c = points.front().from(editing.last);
      const ARC_3D arc(c.x, c.y, c.z, radius, start * kRadiansPerDegree, end * kRadiansPerDegree);
      return drawArc(editing, true, arc);
    };
  }
  if (points.size() != 3) words.complain("an arc needs three points");
  return [=](Editing& editing) {
    const Points p = resolved(editing, points);
    ARC_3D arc;
    if (!isCentered) {
      const bool isMade = arc.Create(p[0], p[1], p[2]);
      return drawArc(editing, isMade, arc);
    }
    const auto angle = [&](const PNT_3D& q) { return std::atan2(q.y - p[0].y, q.x - p[0].x); };
    const double radius = p[0].PNT_2D::dist(p[1]);
    arc = ARC_3D(p[0].x, p[0].y, p[0].z, radius, angle(p[1]), angle(p[2]));
    return drawArc(editing, radius > 0, arc);
  };
}

EditStep readPolylineCommand(CommandWords& words) {
  double width = 0;
  if (const auto text = words.takeValue("w")) {
    const auto number = numbersIn(*text);
    if (!number || number->size() != 1 || number->front() < 0)
      words.complain("'" + *text + "' is not a width like 0.5");
    width = number ? number->front() : 0;
  }
  const auto vertexes = takeVertexes(words);
  const bool isClosed = takeClose(words);
  if (vertexes.size() < 2) words.complain("a polyline needs two points");
  return [=](Editing& editing) { return drawPolyline(editing, vertexes, width, isClosed); };
}

EditStep readRectangleCommand(CommandWords& words) {
  const CommandPoint first = words.point(), second = words.point();
  return [=](Editing& editing) {
    const PNT_3D a = first.from(editing.last), b = second.from(editing.last);
    if (a.x == b.x || a.y == b.y) return StepOutcome::failed("the rectangle has no area");
    const PNT_3D corners[] = {a, PNT_3D(b.x, a.y, a.z), PNT_3D(b.x, b.y, a.z),
                              PNT_3D(a.x, b.y, a.z)};
    std::vector<PolylineVertex> vertexes;
    for (const PNT_3D& corner : corners) vertexes.push_back({{corner, false}});
    const StepOutcome outcome = drawPolyline(editing, vertexes, 0, true);
    editing.last = b;
    return outcome.ok ? StepOutcome::done("rectangle drawn") : outcome;
  };
}

EditStep readPointCommand(CommandWords& words) {
  const auto points = words.points();
  if (points.empty()) words.complain("a point like 10,5 is missing");
  return [=](Editing& editing) {
    NewEnts made;
    for (const PNT_3D& p : resolved(editing, points))
      made.emplace_back(createEntPnt(editing.data, p, 0));
    return addDrawn(editing, std::move(made), counted(points.size(), "point", "points"));
  };
}

EditStep readTextCommand(CommandWords& words) {
  const long justification = takeJustification(words);
  const CommandPoint at = words.point();
  const double height = words.positive("the height");
  const double degrees = words.numberOr(0);
  const std::string string = words.rest();
  if (string.empty()) words.complain("the text is missing");
  const TEXT_3D text(zim::WString::fromUtf8(string), nullptr, 0, 0, 0, height, 0, 1,
                     degrees * kRadiansPerDegree, justification);
  return [=](Editing& editing) { return drawText(editing, text, at.from(editing.last)); };
}

EditStep readInsertCommand(CommandWords& words) {
  InsertRequest request{words.word("the block"), words.point()};
  request.scale = takeScales(words);
  request.degrees = words.numberOr(0);
  request.values = takeValues(words);
  if (request.scale.x == 0 || request.scale.y == 0 || request.scale.z == 0)
    words.complain("a scale of 0 would leave nothing");
  return [=](Editing& editing) { return drawInsert(editing, request); };
}

}  // namespace vek0::host
