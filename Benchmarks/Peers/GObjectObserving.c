/* Property notification and signals in GObject. */
#include <glib-object.h>

#include "PeerTiming.h"

typedef struct {
  GObject parent;
  int number;
} Model;
typedef struct {
  GObjectClass parent;
} ModelClass;

static GType model_get_type(void);
G_DEFINE_TYPE(Model, model, G_TYPE_OBJECT)

static GParamSpec* numberProperty;

static void getProperty(GObject* object, guint property, GValue* value, GParamSpec* pspec) {
  (void)property;
  (void)pspec;
  g_value_set_int(value, ((Model*)object)->number);
}

static void setNumber(Model* model, int number) {
  model->number = number;
  g_object_notify_by_pspec((GObject*)model, numberProperty);
}

static void setProperty(GObject* object, guint property, const GValue* value, GParamSpec* pspec) {
  (void)property;
  (void)pspec;
  ((Model*)object)->number = g_value_get_int(value);
}

static void model_class_init(ModelClass* cls) {
  GObjectClass* object = G_OBJECT_CLASS(cls);
  object->get_property = &getProperty;
  object->set_property = &setProperty;
  numberProperty =
      g_param_spec_int("number", NULL, NULL, G_MININT, G_MAXINT, 0,
                       G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | G_PARAM_EXPLICIT_NOTIFY);
  g_object_class_install_property(object, 1, numberProperty);
}

static void model_init(Model* model) { model->number = 0; }

static void told(GObject* object, GParamSpec* pspec, gpointer count) {
  (void)object;
  (void)pspec;
  ++*(long*)count;
}

static void measureChanges(const char* name, Model* model) {
  int number = 0;
  PEER_MEASURE(name, 1, {
    PEER_TOUCH(model);
    setNumber(model, ++number);
  });
}

int main(void) {
  long counts[10] = {0};
  int k;
  Model* model;
  peerStartThread();
  model = (Model*)g_object_new(model_get_type(), NULL);
  measureChanges("GObject change, nobody observes", model);
  PEER_MEASURE("GObject connect and disconnect", 1, {
    gulong id = g_signal_connect(model, "notify::number", G_CALLBACK(&told), counts);
    g_signal_handler_disconnect(model, id);
  });
  g_signal_connect(model, "notify::number", G_CALLBACK(&told), counts);
  measureChanges("GObject change, 1 observer", model);
  for (k = 1; k < 10; ++k) {
    g_signal_connect(model, "notify::number", G_CALLBACK(&told), counts + k);
  }
  measureChanges("GObject change, 10 observers", model);
  g_object_unref(model);
  return counts[9] == 0;
}
