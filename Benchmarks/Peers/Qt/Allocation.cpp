// The life of a plain object in Qt.
#include <QObject>

#include "../PeerTiming.h"

int main() {
  peerStartThread();
  PEER_MEASURE("Qt new and delete", 1, {
    QObject* object = new QObject;
    PEER_TOUCH(object);
    delete object;
  });
  return 0;
}
