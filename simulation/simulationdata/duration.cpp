#include "duration.h"

#include <QTime>

namespace Units {

QString Duration::toString(unsigned int a_uiMilliseconds)
{
    // The duration is added to midnight, because a null QTime stays invalid whatever is
    // added. The count is signed on purpose, as the comment of toString() describes.
    const QTime time = QTime(0, 0).addMSecs(static_cast<int>(a_uiMilliseconds));
    return time.toString(u"hh:mm:ss's'");
}

} // namespace Units
