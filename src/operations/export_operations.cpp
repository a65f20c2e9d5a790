#include "operations/export_operations.h"

#include <cmath>

#include "io/jcamp/jcamp_writer.h"
#include "operations/transform_operations.h"

namespace zolt {

double jcampReferenceIntensity(const SpectrumDocument& doc) {
    if (!doc.page.plots.empty()) {
        const VerticalRange range = verticalRange(doc.page.plots.front());
        const double shown = range.top - range.bottom;
        if (shown > 0.0 && std::isfinite(shown)) return shown;
    }
    double largest = 0.0;
    for (float v : doc.matrix.re) largest = std::max(largest, double(std::abs(v)));
    return largest > 0.0 && std::isfinite(largest) ? largest : 1.0;
}

bool exportJcamp(const SpectrumDocument& doc, const std::string& path) {
    const SpectrumMatrix& m = doc.matrix;
    const int x = m.xIndex >= 1 && m.xIndex <= 3 ? m.xIndex : directFIndex(m.dims);
    if (x == 0 || m.dimensions > 1) return false;
    JcampExport e;
    e.axis = m.dims[x];
    if (e.axis.points == 0 || m.re.size() < e.axis.points) return false;
    e.re = m.re;
    e.im = m.im;
    e.title = doc.metadata.title;
    e.quadratureMode = doc.source.ftPreferences[x];
    e.reference = jcampReferenceIntensity(doc);
    e.fid = inTimeDomain(doc);
    e.magnitude = m.state & matrix_state::kMagnitude;
    return writeJcamp(e, path);
}

}  // namespace zolt
