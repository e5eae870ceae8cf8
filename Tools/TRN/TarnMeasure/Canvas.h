// Cairo behind the few strokes that our pictures need. Units are points of the page; y grows downwards.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

#include "OSAL/Outcome.h"

namespace TarnMeasure {

struct Colour {
    double red, green, blue, alpha = 1.0;
};

struct Point {
    double x, y;
};

struct Box {
    double left, top, right, bottom;
    double Width() const { return right - left; }
    double Height() const { return bottom - top; }
};

enum class Align { Left, Centre, Right };

class Canvas {
public:
    /// Kind by the ending of `path`: .png, .svg or .pdf. Nothing is at `path` until Finish.
    Canvas(const std::string& path, double width, double height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    void Fill(const Box& box, const Colour& colour);
    void Line(const std::vector<Point>& points, const Colour& colour, double width, bool dashed = false);
    void Area(const std::vector<Point>& points, const Colour& colour);
    void Triangle(const Point& tip, double size, const Colour& colour);
    /// `at` is the base line's end, middle or start; turned by a quarter to the left when `upright` is set.
    void Text(const Point& at, const std::string& text, double size, const Colour& colour, Align align = Align::Left,
              bool bold = false, bool upright = false);
    double TextWidth(const std::string& text, double size, bool bold = false);
    /// What is drawn until the next call stays inside.
    void Clip(const Box& box);
    void Unclip();

    /// Puts the picture at its path.
    OSAL::Outcome<> Finish();

private:
    std::string m_path;
    std::string m_bytes;  ///< what Cairo wrote so far
    cairo_surface_t* m_surface = nullptr;
    cairo_t* m_cairo = nullptr;
    bool m_isPng = false;
};

}  // namespace TarnMeasure
