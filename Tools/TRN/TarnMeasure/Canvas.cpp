#include "Canvas.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include "OSAL/WholeFile.h"
#include "PlainText.h"

namespace TarnMeasure {
namespace {
constexpr double pixelsPerPoint = 1.5;  // of a PNG

cairo_status_t Collect(void* bytes, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}
}  // namespace

Canvas::Canvas(const std::string& path, double width, double height) : m_path(path) {
    m_isPng = path.ends_with(".png");
    if (m_isPng)
        m_surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width * pixelsPerPoint),
                                               static_cast<int>(height * pixelsPerPoint));
    else if (path.ends_with(".svg"))
        m_surface = cairo_svg_surface_create_for_stream(&Collect, &m_bytes, width, height);
    else
        m_surface = cairo_pdf_surface_create_for_stream(&Collect, &m_bytes, width, height);
    m_cairo = cairo_create(m_surface);
    if (m_isPng) cairo_scale(m_cairo, pixelsPerPoint, pixelsPerPoint);
    Fill({0, 0, width, height}, {1, 1, 1});
}

Canvas::~Canvas() {
    if (m_cairo) cairo_destroy(m_cairo);
    if (m_surface) cairo_surface_destroy(m_surface);
}

void Canvas::Fill(const Box& box, const Colour& colour) {
    cairo_set_source_rgba(m_cairo, colour.red, colour.green, colour.blue, colour.alpha);
    cairo_rectangle(m_cairo, box.left, box.top, box.Width(), box.Height());
    cairo_fill(m_cairo);
}

void Canvas::Line(const std::vector<Point>& points, const Colour& colour, double width, bool dashed) {
    if (points.empty()) return;
    cairo_set_source_rgba(m_cairo, colour.red, colour.green, colour.blue, colour.alpha);
    cairo_set_line_width(m_cairo, width);
    cairo_set_line_join(m_cairo, CAIRO_LINE_JOIN_ROUND);
    const double dashes[] = {4, 3};
    cairo_set_dash(m_cairo, dashes, dashed ? 2 : 0, 0);
    cairo_move_to(m_cairo, points[0].x, points[0].y);
    for (const Point& point : points)
        cairo_line_to(m_cairo, point.x, point.y);
    cairo_stroke(m_cairo);
}

void Canvas::Area(const std::vector<Point>& points, const Colour& colour) {
    if (points.empty()) return;
    cairo_set_source_rgba(m_cairo, colour.red, colour.green, colour.blue, colour.alpha);
    cairo_move_to(m_cairo, points[0].x, points[0].y);
    for (const Point& point : points)
        cairo_line_to(m_cairo, point.x, point.y);
    cairo_close_path(m_cairo);
    cairo_fill(m_cairo);
}

void Canvas::Triangle(const Point& tip, double size, const Colour& colour) {
    Area({tip, {tip.x - size / 2, tip.y - size}, {tip.x + size / 2, tip.y - size}}, colour);
}

void Canvas::Text(const Point& at, const std::string& text, double size, const Colour& colour, Align align, bool bold,
                  bool upright) {
    const double width = TextWidth(text, size, bold);
    const double back = align == Align::Left ? 0 : align == Align::Centre ? width / 2 : width;
    cairo_set_source_rgba(m_cairo, colour.red, colour.green, colour.blue, colour.alpha);
    cairo_save(m_cairo);
    cairo_translate(m_cairo, at.x, at.y);
    if (upright) cairo_rotate(m_cairo, -3.14159265358979 / 2);
    cairo_move_to(m_cairo, -back, 0);
    cairo_show_text(m_cairo, Printable(text).c_str());
    cairo_restore(m_cairo);
    cairo_new_path(m_cairo);
}

double Canvas::TextWidth(const std::string& text, double size, bool bold) {
    cairo_select_font_face(m_cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_cairo, size);
    cairo_text_extents_t extents;
    cairo_text_extents(m_cairo, Printable(text).c_str(), &extents);
    return extents.x_advance;
}

void Canvas::Clip(const Box& box) {
    cairo_save(m_cairo);
    cairo_rectangle(m_cairo, box.left, box.top, box.Width(), box.Height());
    cairo_clip(m_cairo);
}

void Canvas::Unclip() {
    cairo_restore(m_cairo);
}

OSAL::Outcome<> Canvas::Finish() {
    cairo_status_t status = cairo_status(m_cairo);
    cairo_destroy(m_cairo);
    m_cairo = nullptr;
    if (m_isPng && status == CAIRO_STATUS_SUCCESS)
        status = cairo_surface_write_to_png_stream(m_surface, &Collect, &m_bytes);
    cairo_surface_finish(m_surface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(m_surface);
    if (status != CAIRO_STATUS_SUCCESS)
        return OSAL::Refusal{"can't draw '" + m_path + "': " + cairo_status_to_string(status)};
    return OSAL::WriteWholeFile(m_path, m_bytes);
}

}  // namespace TarnMeasure
