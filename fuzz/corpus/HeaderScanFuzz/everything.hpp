#define f(x) \
    x
/*! a */ namespace n { extern "C" { int f(); } namespace { class A : public B<C, D>, virtual private E::F {
public: A(); virtual ~A(); explicit A(int a = g(1, {2})) : m{a} { } Q_PROPERTY(int x READ x)
signals: void s(); protected slots: T operator+=(const T &t) const; operator bool() const throw(int) { "}"; '}' }
union { int a; }; struct { int b[3]; } s; class N; friend class M; enum { X }; static const int i = 3; }; } }
class n::A::N { template <class T, int n = (3)> T t(map<T, int> m); };
typedef struct tag { int (*cb)(void); unsigned x : 3, y : W; const char *s[2]; union { int u; } v; } name, *ptr;
typedef enum { Y } e; typedef int (*fp)(int, ...); struct fwd; struct one { int a; } two; struct one f1(int);
int (*f2(int a))(int (*cb)(int n, char *s), int (&r)[2]); int a, *b, **c[4], d = {1, {2}}; std::string str, A::x;
void n::A::s() { } int n::A::~A() { } bool operator()(int); L"w" L'x' 1.5e3 a % b | c $d x$ ... .. :: @ ` \
// TODO: x
namespace fs = std; using namespace fs; void __interrupt(4) isr(void); asm("x"); __monitor int q(void) __THROW;
