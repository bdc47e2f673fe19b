// Section properties of the region that the profile's closed curves bound.
//
// The region is what lies inside the closed curves, a curve inside another
// making a hole and a curve inside a hole an island again. The curves are
// taken as the display draws them: the polylines of the splines at the
// profile's accuracy. Open curves are left out.
//
//   IQSECP  compute the area, centroid and first and second moments of the region
//   PRSECP  print the section properties as a page of the printout
#pragma once

namespace kntr::profile {

struct SectionProperties {
  int curves = 0;     // closed curves that make the region
  double area = 0.0;  // area
  double xc = 0.0;    // centroid X
  double yc = 0.0;    // centroid Y
  double sx = 0.0;    // first moment about the reference point's X axis: integral of (y - yref)
  double sy = 0.0;    // first moment about the reference point's Y axis: integral of (x - xref)
  double ixx = 0.0;   // integral of (y - yc)^2: second moment about the centroidal X axis
  double iyy = 0.0;   // integral of (x - xc)^2: second moment about the centroidal Y axis
  double ixy = 0.0;   // integral of (x - xc)(y - yc): product moment about the centroid
};

// IQSECP: the section properties of the closed curves.
//   status: set when the profile has no closed curve, their area is zero,
//   or the polylines fail; the message has been shown.
void IQSECP(SectionProperties& props, bool& status);

// PRSECP: the page "Section properties", or a one-line notice when the
// profile has no closed curve.
//   status: set when the polylines fail.
void PRSECP(bool& status);

}  // namespace kntr::profile
