#pragma once

#include <QIcon>
#include <QPalette>
#include <QStyle>

/// The desktop's icon \p themeName, or Qt's own \p fallback, drawn in the palette's text colour so that it
/// is seen on light and dark windows alike.
QIcon fx_ControlIcon(QString const& themeName, QStyle::StandardPixmap fallback, QPalette const& palette);

/// Shapes that Qt's standard set lacks.
enum class Shape { StepBack, StepForward, Loop, Folder, Camera, Film };

QIcon fx_ShapeIcon(Shape shape, QPalette const& palette); ///< in the palette's text colour
QIcon fx_RecordIcon();                                    ///< the red dot of recorders
