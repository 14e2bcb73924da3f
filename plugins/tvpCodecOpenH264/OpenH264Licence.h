#pragma once

/// The notice that goes with every copy of the OpenH264 binary, as published: 4595 bytes of UTF-8,
/// which whoever ships this plug-in must show. From openh264-licence-notice.txt.
extern char const kOpenH264Licence[];
extern int const kOpenH264LicenceSize;
