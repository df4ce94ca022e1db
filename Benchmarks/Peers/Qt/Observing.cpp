// Property notification in Qt: an ordinary setter that emits its property's signal.
#include <array>

#include <QObject>

#include "../PeerTiming.h"

class Model : public QObject {
  Q_OBJECT
  Q_PROPERTY(int number READ number WRITE setNumber NOTIFY numberChanged)

 public:
  int number() const { return number_; }
  void setNumber(int number) {
    if (number == number_) return;
    number_ = number;
    Q_EMIT numberChanged(number);
  }

 Q_SIGNALS:
  void numberChanged(int number);

 private:
  int number_ = 0;
};

static void measureChanges(const char* name, Model& model) {
  Model* changed = &model;
  int number = 0;
  PEER_MEASURE(name, 1, {
    PEER_TOUCH(changed);
    changed->setNumber(++number);
  });
}

int main() {
  peerStartThread();
  std::array<long, 10> sums{};
  Model model;
  measureChanges("Qt change, nobody observes", model);
  PEER_MEASURE("Qt connect and disconnect", 1, {
    QObject::disconnect(QObject::connect(&model, &Model::numberChanged,
                                         [&sums](int number) { sums[0] += number; }));
  });
  for (std::size_t i = 0; i < sums.size(); ++i) {
    QObject::connect(&model, &Model::numberChanged, [&sums, i](int number) { sums[i] += number; });
    if (i == 0) measureChanges("Qt change, 1 observer", model);
  }
  measureChanges("Qt change, 10 observers", model);
  return sums[9] == 0 ? 1 : 0;
}

#include "Observing.moc"
