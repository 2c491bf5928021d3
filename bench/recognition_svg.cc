#include "bench/recognition_svg.h"

#include <algorithm>
#include <cstdio>

namespace gromlit {
namespace {

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", v);
  return text;
}

std::string Text(double x, double y, const std::string& text, const char* anchor = "start") {
  return "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" text-anchor=\"" + anchor + "\">" +
         text + "</text>\n";
}

std::string Open(int width, int height) {
  const std::string size =
      "width=\"" + std::to_string(width) + "\" height=\"" + std::to_string(height) + "\"";
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size +
         " font-family=\"sans-serif\" font-size=\"13\">\n<rect " + size + " fill=\"white\"/>\n";
}

std::string Line(const std::string& points, const std::string& colour, double width) {
  return "<polyline fill=\"none\" stroke=\"" + colour + "\" stroke-width=\"" + Number(width) +
         "\" stroke-linejoin=\"round\" points=\"" + points + "\"/>\n";
}

// The stroke within a square, its beginning marked.
std::string Picture(const Stroke& stroke, double left, double top, double size,
                    const char* colour) {
  const auto [xlow, xhigh] = std::minmax_element(stroke.x, stroke.x + stroke.count);
  const auto [ylow, yhigh] = std::minmax_element(stroke.y, stroke.y + stroke.count);
  const double scale = size / std::max({*xhigh - *xlow, *yhigh - *ylow, 1});
  const double xmargin = (size - (*xhigh - *xlow) * scale) / 2;
  const double ymargin = (size - (*yhigh - *ylow) * scale) / 2;
  std::string points;
  std::string dot;
  for (int i = 0; i < stroke.count; i++) {
    const std::string x = Number(left + xmargin + (stroke.x[i] - *xlow) * scale);
    const std::string y = Number(top + ymargin + (stroke.y[i] - *ylow) * scale);
    points += x + "," + y + " ";
    if (i == 0)
      dot = "<circle r=\"4\" fill=\"" + std::string(colour) + "\" cx=\"" + x + "\" cy=\"" + y +
            "\"/>\n";
  }
  return Line(points, colour, 2) + dot;
}

}  // namespace

std::string PlotSvg(const std::vector<Curve>& curves, CurvePoint mark) {
  constexpr double kLeft = 60;
  constexpr double kTop = 40;
  constexpr double kWide = 520;
  constexpr double kHigh = 360;
  constexpr double kMostWrong = 6;
  constexpr double kLeastRight = 50;
  const auto x = [=](double wrong) {
    return kLeft + std::min(wrong, kMostWrong) / kMostWrong * kWide;
  };
  const auto y = [=](double right) {
    return kTop + (100 - std::max(right, kLeastRight)) / (100 - kLeastRight) * kHigh;
  };
  std::string svg = Open(620, 450);
  for (int wrong = 0; wrong <= kMostWrong; wrong++) {
    svg += Line(
        Number(x(wrong)) + "," + Number(kTop) + " " + Number(x(wrong)) + "," + Number(kTop + kHigh),
        "#dddddd", 1);
    svg += Text(x(wrong), kTop + kHigh + 18, std::to_string(wrong) + " %", "middle");
  }
  for (int right = static_cast<int>(kLeastRight); right <= 100; right += 10) {
    svg += Line(Number(kLeft) + "," + Number(y(right)) + " " + Number(kLeft + kWide) + "," +
                    Number(y(right)),
                "#dddddd", 1);
    svg += Text(kLeft - 6, y(right) + 4, std::to_string(right) + " %", "end");
  }
  svg += Text(kLeft + kWide, kTop + kHigh + 38, "wrong", "end");
  // Above the axis: at its upper end within the frame is where a good curve runs.
  svg += Text(kLeft - 6, kTop - 16, "right", "end");
  double legend = kTop + kHigh - 60;
  for (const Curve& curve : curves) {
    std::string points;
    for (const CurvePoint& p : curve.points) {
      if (p.right < kLeastRight || p.wrong > kMostWrong) continue;
      points += Number(x(p.wrong)) + "," + Number(y(p.right)) + " ";
    }
    if (points.empty()) continue;
    svg += Line(points, curve.colour, 2);
    svg += Line(Number(kLeft + 330) + "," + Number(legend) + " " + Number(kLeft + 360) + "," +
                    Number(legend),
                curve.colour, 2);
    svg += Text(kLeft + 368, legend + 4, curve.name);
    legend += 20;
  }
  svg += "<circle r=\"5\" fill=\"none\" stroke=\"black\" cx=\"" + Number(x(mark.wrong)) +
         "\" cy=\"" + Number(y(mark.right)) + "\"/>\n";
  svg += Text(x(mark.wrong) + 10, y(mark.right) + 16, "tolerance Medium");
  return svg + "</svg>\n";
}

std::string ConfusionsSvg(const std::vector<Confusion>& confusions) {
  constexpr int kCell = 110;
  constexpr int kRow = kCell + 50;
  constexpr int kColumn = 230;
  std::string svg = Open(3 * kColumn + 20, static_cast<int>(confusions.size()) * kRow + 30);
  svg += Text(20, 20, "meant") + Text(20 + kColumn, 20, "drawn") +
         Text(20 + 2 * kColumn, 20, "taken for");
  double top = 40;
  for (const Confusion& confusion : confusions) {
    svg += Picture(confusion.ownvector, 20, top, kCell, "#666666");
    svg += Picture(confusion.stroke, 20 + kColumn, top, kCell, "#c02020");
    svg += Picture(confusion.takenvector, 20 + 2 * kColumn, top, kCell, "#666666");
    svg += Text(20, top + kCell + 20, confusion.own);
    svg += Text(20 + kColumn, top + kCell + 20, std::to_string(confusion.count) + " times");
    svg += Text(20 + 2 * kColumn, top + kCell + 20, confusion.taken);
    top += kRow;
  }
  return svg + "</svg>\n";
}

}  // namespace gromlit
