#include <zavbase/values/uval.h>

ZAV_DEFINE_CLASS(ZAV_UVal, ZAV_CltObject)

ZAV_UVal::~ZAV_UVal() = default;

ZAV_UVal* ZAV_UVal::DeepCopy() { return nullptr; }
void ZAV_UVal::SetStrValue(const ZAV_String&, long) {}
void ZAV_UVal::GetStrValue(ZAV_String&, long) {}
void ZAV_UVal::SetPtrValue(void*, long) {}
void ZAV_UVal::GetPtrValue(void*, long) {}
void ZAV_UVal::SetCharValue(char, long) {}
char ZAV_UVal::GetCharValue(long) { return 0; }
void ZAV_UVal::SetUCharValue(unsigned char, long) {}
unsigned char ZAV_UVal::GetUCharValue(long) { return 0; }
void ZAV_UVal::SetShortValue(short, long) {}
short ZAV_UVal::GetShortValue(long) { return 0; }
void ZAV_UVal::SetUShortValue(unsigned short, long) {}
unsigned short ZAV_UVal::GetUShortValue(long) { return 0; }
void ZAV_UVal::SetLongValue(long, long) {}
long ZAV_UVal::GetLongValue(long) { return 0; }
void ZAV_UVal::SetULongValue(unsigned long, long) {}
unsigned long ZAV_UVal::GetULongValue(long) { return 0; }
void ZAV_UVal::SetFloatValue(float, long) {}
float ZAV_UVal::GetFloatValue(long) { return 0.0F; }
void ZAV_UVal::SetDoubleValue(double, long) {}
double ZAV_UVal::GetDoubleValue(long) { return 0.0; }
const char* ZAV_UVal::GetCStringValue(long) { return nullptr; }
int ZAV_UVal::GetSystemStringValue(ZAV_SystemString*, long) { return -1; }
