#include "duration.h"

#include <QTime>

namespace Units {

QString Duration::toString(unsigned int a_uiMilliseconds)
{
    // Starts from midnight: a null QTime stays invalid whatever is added. The count
    // is signed on purpose, as toString() documents.
    const QTime time = QTime(0, 0).addMSecs(static_cast<int>(a_uiMilliseconds));
    return time.toString(u"hh:mm:ss's'");
}

} // namespace Units
