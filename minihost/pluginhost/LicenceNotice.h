#pragma once

#include <QString>

class CxPlugin;

/// The licence notice of \p plugin as its author wrote it. A plug-in may hand on the bytes of a UTF-8 file
/// one by one, as Latin-1: what reads as such is put right, anything else is left as it is.
QString fx_LicenceNotice(CxPlugin const& plugin);
