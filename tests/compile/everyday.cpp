// What a user types first, across the library: literals and variables of the types one happens to have, no
// casts, temporaries, const objects, auto, the standard library's containers and streams. That it compiles
// without a warning, with every compiler, is the test.
#include <zavbase/zavbase.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

void Strings(std::ostream& os, int i, size_t n, char c, const std::string& text) {
    ZAV_String s, t = "text", u("text", 4), v(c, 3), reserved(100);
    const ZAV_String whole(text.c_str());
    s = "a";
    s += t;
    s += c;
    s += "b";
    s = t + "b" + s + 'c' + whole(0, 1) + ("x" + t);
    s.Format("%d %u %ld %zu %s %c %5.2f %x", i, 5u, 5L, n, t.Ptr(), c, 1.5, 255);
    if (!s.IsEmpty() && s.Find('x') >= 0 && s.Find("x", i) == -1 && s.Length() > 3) s.ToUpper().ToLower();
    for (unsigned int at = 0; at < s.Length(); ++at) s.At(at) = c;
    s(0, 2) = "yz";
    ZAV_UTFString utf(s), copy = utf, more = "caf\xC3\xA9";
    utf = s + utf;
    utf += t;
    utf = utf + more + s + "x" + more(0, 2) + c;
    utf.TrimRight();
    const bool empty = utf.IsEmpty() || s == utf;
    const std::string standard(s), other = utf.Ptr();
    std::istringstream is("line\n");
    while (s.ReadLine(is)) os << s << utf << whole << s(0, 1) << more(1, 2) << (s == t) << empty << '\n';
    const ZAV_SystemString name("file.txt"), fromUtf(utf), fromString(s);
    os << name << name.GetSystemString() << name.GetUtfString().Length() << std::endl;
}

void Collections(std::ostream& os) {
    ZAV_OrderedCltn list;
    list.Add(new ZAV_CltString("b"));
    list.Add(new ZAV_CltUTFString("a"));
    list.Add(new ZAV_Integer(5));
    ZAV_Iterator it(&list);
    while (ZAV_CltObject* o = ++it) os << *o << o->Hash();
    for (int i = 0; i < static_cast<int>(list.Size()); ++i) os << *list[i] << list.At(i)->ClassName();
    ZAV_CltString key("b");
    const ZAV_CltString constant("c");
    if (list.Includes(&key) && list.OccurrencesOf(&constant) == 0 && list.First() != GetNilObj()) os << list;
    ZAV_DictAutoDel dict;
    dict.AddAssoc(new ZAV_CltString("k"), new ZAV_Integer(1));
    if (dict.IncludesKey(&key)) os << *dict.AtKey(&key);
    ZAV_Set set(100), both = set | set;
    set.Add(&key);
    ZAV_Stack stack;
    stack.Push(&key);
    os << *stack.Pop() << key << constant << dict << set
       << list.IsKindOf(&ZAV_OrderedCltn::classZAV_OrderedCltn);
    list.ClearAndDestroy();
}

void Values(std::ostream& os, int i, size_t n, const std::string& text) {
    ZAV_UValDict dict;
    dict.SetUVal("camera:exposure", new ZAV_UValLong);
    dict.SetValue("camera:exposure", i);
    dict.SetValue("camera:name", text.c_str());
    dict.SetValue(ZAV_String("camera:gain"), 1.5);
    dict.SetValue("camera:on", B_TRUE);
    dict.SetValue("camera:count", n);
    const ZAV_UValDict& constant = dict;
    const int exposure = constant.GetValue("camera:exposure", 100);
    const char* name = constant.GetValue("camera:name", "none");
    const ZAV_String owned = constant.GetValue("camera:name", ZAV_String("none"));
    const ZAV_UTFString utf = constant.GetValue("camera:name", ZAV_UTFString("none"));
    const double gain = constant.GetValue("camera:gain", 2.0);
    const boolean_t on = constant.GetValue("camera:on", B_FALSE);
    ZAV_DictPath path("camera"), longer = path + "gain";
    path += "gain";
    if (path == longer && constant.GetUVal(path) != nullptr &&
        constant.GetUVal(path)->GetType() == UVAL_DOUBLE)
        os << dict << path << exposure << name << owned << utf << gain << on
           << constant.GetUValDimension(path);
    const std::unique_ptr<ZAV_UValDict> copy(dict.DeepCopy());
    ZAV_WriteUValTxt(os, copy.get());
    os << ZAV_ConfigGet("ZAV", "SYSTEM", "PRIORITY", 5) << ZAV_ConfigGet("ZAV", "SYSTEM", "NAME", "none");
}

void Messages(std::ostream& os, int i, long l, size_t n, const ZAV_String& s, const ZAV_UTFString& u) {
    ZAV_I18nMsg msg("Read <<n>> of <<file>>");
    msg.AddArg("<<n>>", i, "%d", ZAV_I18N_STRING);
    msg.AddArg("<<n>>", l, "%ld", ZAV_I18N_STRING);
    msg.AddArg("<<n>>", n, "%zu", ZAV_I18N_STRING);
    msg.AddArg("<<n>>", 1.5, "%g", ZAV_I18N_STRING);
    msg.AddArg("<<file>>", "name", ZAV_I18N_STRING);
    msg.AddArg("<<file>>", s, ZAV_I18N_STRING);
    msg.AddArg("<<file>>", u, ZAV_I18N_STRING);
    msg.AddArg("<<detail>>", ZAV_Error(ERR_BASE_INTERNAL), ZAV_I18N_SUBERROR);
    const ZAV_I18nMsg copy = msg;
    os << msg << copy << copy.Format("en", nullptr, nullptr).Ptr();
    ZAV_I18nResource resource;
    ZAV_UValDict defs;
    ZAV_Base_GetI18nDefs(&defs, B_TRUE, B_TRUE);
    resource.SetDefaultDefs(&defs);
    try {
        ZAV_ThrowErrorException(ZAV_Error("ERR_MINE"));
    } catch (ZAV_ErrorException* e) {
        if (e->mError == "ERR_MINE" && e->mError != ERR_BASE_INTERNAL) os << *e << e->mError;
        e->Delete();
    } catch (ZAV_Exception* e) {
        ZAV_String told;
        os << e->ToString(told);
        e->Delete();
    }
}

class Handler : public ZAV_EvHandlerBody {
protected:
    int HandleEvent(ZAV_Event* event) override { return event->Type() == 0x53746F70 ? 2 : 0; }
};

class Worker : public ZAV_Thread {
public:
    Worker() : ZAV_Thread(ZAV_THREAD_PLAIN) {}

protected:
    void run() override { ZAV_MilliSleep(1); }
};

void ThreadsAndEvents(std::ostream& os) {
    ZAV_Mutex mutex;
    ZAV_ReadWriteLock rwLock;
    {
        ZAV_Mutex::Lock lock(mutex, B_FALSE);
        ZAV_ReadWriteLock::ReadLock reading(rwLock, B_TRUE);
        if (lock.LockAcquired() && !reading.LockAcquired()) os << "busy";
    }
    Worker worker;
    if (ZAV_ThreadError error = worker.BeginThread(ZAV_THREAD_CLEANUP_NONE, 0)) os << error.String();
    if (!worker.WaitForThread(1000)) os << "done";
    ZAV_EvDispatcher dispatcher;
    const ZAV_EvHandlerRef handler(new Handler);
    dispatcher.AddEvHandler(handler);
    handler->QueueEvent(new ZAV_EventStop, 0);
    os << dispatcher.QueueLength() << ZAV_Event::instance_counter;
    ZAV_SyncObjRef sync;
    sync->Set(3);
    sync->Decrement();
}

void Geometry(std::ostream& os, short x, int y) {
    const ZAV_Point p(x, 2), q = p + ZAV_Point(1, 2);
    const ZAV_Rect r(0, y, 10, 20), s(p, q);
    if (r.Contains(p) || r.Intersects(s)) os << p << q - p << (r & s) << (r || s) << r.Width() * 2 << p * q;
    os << ZAV_Pow(2, 10) << ZAV_Exp10(1.5f) << ZAV_atof("1,5", ',');
}

} // namespace

int main() {
    std::ostringstream os;
    Strings(os, 1, 2, 'c', "text");
    Collections(os);
    Values(os, 1, 2, "text");
    Messages(os, 1, 2, 3, "s", "u");
    ThreadsAndEvents(os);
    Geometry(os, 1, 2);
    return os.str().empty() ? 1 : 0;
}
