! Prints the column-format reference tables from gfortran's own formatted I/O:
! write_cases.txt (format, typed values, bytes written) and read_cases.txt (format, records,
! values read or the error). Run through make_cases.sh.
module table
  implicit none
  integer, parameter :: kMaxValues = 64, kTextLen = 100
  character(len=1) :: kinds(kMaxValues)
  integer(8) :: ints(kMaxValues)
  real(4) :: singles(kMaxValues)
  real(8) :: doubles(kMaxValues)
  character(len=kTextLen) :: texts(kMaxValues)
  integer :: textLens(kMaxValues)
  integer :: nValues = 0, nWrites = 0, nReads = 0
  integer :: writeTab, readTab, u
  ! fm is what gfortran runs; shown is the format as the system writes it, which may leave
  ! out the outer parentheses that Fortran requires.
  character(len=:), allocatable :: fm, shown, targetSpec, note
  character(len=*), parameter :: kScratch = 'case.tmp'
  ! Read targets.
  integer :: ti(8)
  real(4) :: tf(8)
  real(8) :: td(8)
  character(len=40) :: ts(8)
contains
  ! Value recorders: each logs its value for the table and hands it to the write list.
  integer function vi(x)
    integer, intent(in) :: x
    call push('i')
    ints(nValues) = x
    vi = x
  end function

  integer(8) function vj(x)
    integer(8), intent(in) :: x
    call push('i')
    ints(nValues) = x
    vj = x
  end function

  real(4) function vf(x)
    real(4), intent(in) :: x
    call push('f')
    singles(nValues) = x
    vf = x
  end function

  real(8) function vd(x)
    real(8), intent(in) :: x
    call push('d')
    doubles(nValues) = x
    vd = x
  end function

  function vs(x) result(r)
    character(len=*), intent(in) :: x
    character(len=len(x)) :: r
    call push('s')
    texts(nValues) = x
    textLens(nValues) = len(x)
    r = x
  end function

  subroutine setFormat(format)
    character(len=*), intent(in) :: format
    shown = format
    fm = format
    if (format(1:1) /= '(') fm = '(' // format // ')'
  end subroutine

  subroutine push(kind)
    character(len=1), intent(in) :: kind
    nValues = nValues + 1
    kinds(nValues) = kind
  end subroutine

  subroutine wbegin(format, comment)
    character(len=*), intent(in) :: format, comment
    call setFormat(format)
    note = comment
    nValues = 0
    open(newunit=u, file=kScratch, status='replace', form='formatted', action='write')
  end subroutine

  ! Ends a write case: a sentinel record follows the case output so that a missing record
  ! end ('$') shows, then the bytes are read back and listed.
  subroutine wend()
    character(len=:), allocatable :: bytes
    integer :: k, start, stop, nl
    write(u, '(a)') '<END>'
    close(u)
    call slurp(bytes)
    stop = index(bytes, '<END>') - 1
    nWrites = nWrites + 1
    write(writeTab, '(a,i0,1x,a)') 'case ', nWrites, note
    write(writeTab, '(a)') 'fmt ' // shown
    do k = 1, nValues
      call putValue(k)
    end do
    start = 1
    do
      nl = index(bytes(start:stop), new_line('a'))
      if (nl == 0) exit
      write(writeTab, '(a)') 'out |' // bytes(start:start + nl - 2) // '|'
      start = start + nl
    end do
    if (start <= stop .or. stop == 0) write(writeTab, '(a)') 'part |' // bytes(start:stop) // '|'
    write(writeTab, '(a)') 'end'
  end subroutine

  subroutine putValue(k)
    integer, intent(in) :: k
    select case (kinds(k))
    case ('i')
      write(writeTab, '(a,i0)') 'val i ', ints(k)
    case ('f')
      write(writeTab, '(a,z8.8,1x,es16.8e3)') 'val f ', singles(k), singles(k)
    case ('d')
      write(writeTab, '(a,z16.16,1x,es25.16e3)') 'val d ', doubles(k), doubles(k)
    case ('s')
      write(writeTab, '(a)') 'val s |' // texts(k)(1:textLens(k)) // '|'
    end select
  end subroutine

  subroutine slurp(bytes)
    character(len=:), allocatable, intent(out) :: bytes
    integer :: v, n
    open(newunit=v, file=kScratch, access='stream', form='unformatted', action='read', &
         status='old')
    inquire(unit=v, size=n)
    allocate(character(len=n) :: bytes)
    if (n > 0) read(v) bytes
    close(v, status='delete')
  end subroutine

  ! Every value of the list written alone by every format of the list.
  subroutine writeEachD(formats, values, comment)
    character(len=*), intent(in) :: formats(:), comment
    real(8), intent(in) :: values(:)
    integer :: a, b
    do a = 1, size(formats)
      do b = 1, size(values)
        call wbegin(trim(formats(a)), comment)
        write(u, fm) vd(values(b))
        call wend()
      end do
    end do
  end subroutine

  subroutine writeEachF(formats, values, comment)
    character(len=*), intent(in) :: formats(:), comment
    real(4), intent(in) :: values(:)
    integer :: a, b
    do a = 1, size(formats)
      do b = 1, size(values)
        call wbegin(trim(formats(a)), comment)
        write(u, fm) vf(values(b))
        call wend()
      end do
    end do
  end subroutine

  subroutine writeEachI(formats, values, comment)
    character(len=*), intent(in) :: formats(:), comment
    integer, intent(in) :: values(:)
    integer :: a, b
    do a = 1, size(formats)
      do b = 1, size(values)
        call wbegin(trim(formats(a)), comment)
        write(u, fm) vi(values(b))
        call wend()
      end do
    end do
  end subroutine

  ! Read cases: the records go to a file, the targets named in 'targets' ("i f d s5") are
  ! read from it by the case's read statement.
  subroutine rbegin(format, records, targets, comment)
    character(len=*), intent(in) :: format, records(:), targets, comment
    integer :: k
    call setFormat(format)
    targetSpec = targets
    nReads = nReads + 1
    write(readTab, '(a,i0,1x,a)') 'case ', nReads, comment
    write(readTab, '(a)') 'fmt ' // shown
    open(newunit=u, file=kScratch, status='replace', form='formatted', action='write')
    do k = 1, size(records)
      write(u, '(a)') trim(records(k))
      write(readTab, '(a)') 'rec |' // trim(records(k)) // '|'
    end do
    close(u)
    open(newunit=u, file=kScratch, status='old', form='formatted', action='read')
    ti = -999
    tf = -999
    td = -999
    ts = repeat('?', len(ts))
  end subroutine

  subroutine rend(ios)
    integer, intent(in) :: ios
    integer :: pos, next, ni, nf, nd, ns, length
    character(len=8) :: token
    close(u, status='delete')
    ni = 0; nf = 0; nd = 0; ns = 0
    pos = 1
    do while (pos <= len(targetSpec))
      next = index(targetSpec(pos:) // ' ', ' ') + pos - 1
      token = targetSpec(pos:next - 1)
      pos = next + 1
      if (len_trim(token) == 0) cycle
      select case (token(1:1))
      case ('i')
        ni = ni + 1
        if (ios == 0) write(readTab, '(a,i0)') 'tgt i ', ti(ni)
        if (ios /= 0) write(readTab, '(a)') 'tgt i'
      case ('f')
        nf = nf + 1
        if (ios == 0) write(readTab, '(a,z8.8,1x,es16.8e3)') 'tgt f ', tf(nf), tf(nf)
        if (ios /= 0) write(readTab, '(a)') 'tgt f'
      case ('d')
        nd = nd + 1
        if (ios == 0) write(readTab, '(a,z16.16,1x,es25.16e3)') 'tgt d ', td(nd), td(nd)
        if (ios /= 0) write(readTab, '(a)') 'tgt d'
      case ('s')
        ns = ns + 1
        read(token(2:), *) length
        if (ios == 0) write(readTab, '(a,i0,a)') 'tgt s ', length, ' |' // ts(ns)(1:length) // '|'
        if (ios /= 0) write(readTab, '(a,i0)') 'tgt s ', length
      end select
    end do
    if (ios == 0) write(readTab, '(a)') 'end ok'
    if (ios /= 0) write(readTab, '(a)') 'end error'
  end subroutine
end module table

program make_cases
  use table
  implicit none
  open(newunit=writeTab, file='write_cases.txt', status='replace', action='write')
  open(newunit=readTab, file='read_cases.txt', status='replace', action='write')
  call header(writeTab, [character(len=100) :: &
    'Formatted output of gfortran, made by make_cases.sh; do not edit.', &
    'case N note / fmt FORMAT / val KIND VALUE (one a value, in the order written) /', &
    'out |RECORD| (one a record ended by a newline) / part |TEXT| (last record, no newline) /', &
    'end.  KIND: i integer; f real(4) as hex bits; d real(8) as hex bits; s |text|.', &
    'The decimal after the hex bits is for reading only.'])
  call header(readTab, [character(len=100) :: &
    'Formatted input of gfortran, made by make_cases.sh; do not edit.', &
    'case N note / fmt FORMAT / rec |RECORD| (one a line of the input) /', &
    'tgt KIND VALUE (one a target, in the order read) / end ok|error.', &
    'KIND: i integer; f real(4) as hex bits; d real(8) as hex bits; s LEN |text padded to LEN|.', &
    'After an error only the kinds of the targets are listed.'])
  call writeFixed()
  call writeExponent()
  call writeIntegerAndText()
  call writePositions()
  call writeGroups()
  call readIntegers()
  call readReals()
  call readOther()
  close(writeTab)
  close(readTab)
contains
  subroutine header(unit, lines)
    integer, intent(in) :: unit
    character(len=*), intent(in) :: lines(:)
    integer :: k
    do k = 1, size(lines)
      write(unit, '(a)') '# ' // trim(lines(k))
    end do
  end subroutine

  subroutine writeFixed()
    real(8), parameter :: inf = huge(1d0) * 2, nan = transfer(-2251799813685248_8, 1d0)
    real(4), parameter :: floatValues(*) = [0.1, 1.1, 3.14159265, 1.0e-8, 16777217.0, -2.7182817]
    call writeEachD([character(len=8) :: '(f5.2)'], &
      [0.125d0, 0.375d0, 0.625d0, -0.125d0, 1.005d0, 2.675d0, 0.115d0, 0.12499999999999999d0, &
       0.135d0, 1.0625d0, -0.005d0, 0.005d0, 99.995d0, 9.995d0, 0.0d0, -0.0d0], 'F ties')
    call writeEachD([character(len=8) :: '(f3.0)', '(f4.0)'], &
      [0.5d0, 1.5d0, 2.5d0, 3.5d0, -2.5d0, -0.5d0, 0.4d0, 0.0d0, 9.5d0, 99.5d0, &
       2.4999999999999996d0, 2.5000000000000004d0], 'F without decimals')
    call writeEachD([character(len=8) :: '(f6.3)', '(f5.3)', '(f8.4)'], &
      [1.0625d0, 1.0615d0, -1.0625d0, 0.0005d0, 0.9995d0], 'F three and four decimals')
    call writeEachD([character(len=8) :: '(f3.2)', '(f4.2)', '(f5.2)'], &
      [0.5d0, -0.5d0, 0.0d0, -0.001d0, 0.001d0, 0.999d0, -0.999d0, 0.995d0], 'F leading zero')
    call writeEachD([character(len=8) :: '(f1.0)', '(f2.0)', '(f2.1)'], &
      [0.0d0, 0.4d0, -0.4d0, 1.0d0], 'F narrow')
    call writeEachD([character(len=8) :: '(f6.2)', '(f10.2)'], &
      [1234.5d0, 99999.999d0, -999.99d0, -9999.99d0, 1d10, 1d300, -1d300], 'F overflow')
    call writeEachD([character(len=8) :: '(f8.3)', '(f12.10)', '(f25.20)'], &
      [1d-300, 1d-10, transfer(1_8, 1d0), 0.1d0, 123.456d0], 'F tiny')
    call writeEachF([character(len=8) :: '(f20.15)', '(f12.10)', '(f9.5)', '(f30.25)'], &
      floatValues, 'F of real(4)')
    call writeEachD([character(len=8) :: '(f3.0)', '(f4.1)', '(f8.2)', '(f9.2)', '(f10.3)'], &
      [inf, -inf, nan], 'F infinity and NaN')
    call writeEachD([character(len=8) :: '(F7.1)', '( f9.3 )'], [-12.25d0], 'F case, blanks')
  end subroutine

  subroutine writeExponent()
    real(8), parameter :: inf = huge(1d0) * 2
    call writeEachD([character(len=8) :: '(e12.5)', '(e11.5)', '(e10.5)', '(e9.5)'], &
      [123.45d0, -123.45d0, 0.0d0, 1.0d0], 'E width')
    call writeEachD([character(len=10) :: '(e12.5)', '(e10.2)', '(e15.7)'], &
      [0.125d0, 9.9999d0, 1d-5, 1d100, 1d-99, 1d-100, 1d-300, 1d300, 1.7976931348623157d308, &
       -1d200, transfer(1_8, 1d0), 0.9999996d0, -0.0d0, inf], 'E range')
    call writeEachD([character(len=10) :: '(e12.5e3)', '(e10.3e1)', '(e15.7e4)', &
      '(E13.4E2)'], [123.0d0, 1d10, 1d-10, 1d100, 0.0d0], 'E exponent width')
    call writeEachF([character(len=8) :: '(e16.9)', '(e15.8)', '(e10.3)'], &
      [0.1, 1.1, -3.5e-20, 3.4028235e38], 'E of real(4)')
    call wbegin('e12.5', 'E without parentheses')
    write(u, fm) vd(-0.000123456789d0)
    call wend()
    call wbegin('5E14.7', 'E list with reversion')
    write(u, fm) vd(1d0), vd(2d0), vd(-3d0), vd(4d0), vd(5d0), vd(6d-6), vd(7d7)
    call wend()
  end subroutine

  subroutine writeIntegerAndText()
    call writeEachI([character(len=8) :: '(i5)', '(i3)', '(i1)'], &
      [0, 5, -5, 123, -12, 1234, 12345, -1234, 123456], 'I')
    call writeEachI([character(len=8) :: '(i5.3)', '(i5.5)', '(i3.0)', '(I6.2)'], &
      [0, 7, -7, -12, 12345, 1], 'I with digits')
    call wbegin('(i20,i21)', 'I of 64-bit values')
    write(u, fm) vj(9223372036854775807_8), vj(-9223372036854775807_8 - 1)
    call wend()
    call wbegin('(a5,a2,a,a3,a)', 'A widths')
    write(u, fm) vs('abc'), vs('abcdef'), vs('xy'), vs('abc'), vs('ab  ')
    call wend()
    call wbegin('(A10,"|",a1,"|")', 'A wider, narrower')
    write(u, fm) vs('right'), vs('left')
    call wend()
    call wbegin('(1X,A70/)', 'title')
    write(u, fm) vs('Corundum standard, Cu K-alpha, 5-120 deg')
    call wend()
    call wbegin('(a,i8,f10.0,a)', 'mixed list')
    write(u, fm) vs('count'), vi(42), vd(1234.5d0), vs(' end')
    call wend()
  end subroutine

  subroutine writePositions()
    call wbegin('(i3,5x,i3)', 'X between')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('(5x,i3)', 'X leading')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(i3,5x)', 'X trailing')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(x,i3)', 'X without count')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(t10,i3)', 'T forward')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(t10,i3,t2,i2)', 'T backward overwrites')
    write(u, fm) vi(123), vi(45)
    call wend()
    call wbegin('(i5,tl3,i2)', 'TL overwrites')
    write(u, fm) vi(12345), vi(-1)
    call wend()
    call wbegin('(i3,tr4,i3)', 'TR')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('(a6,tl20,a2)', 'TL before the record start')
    write(u, fm) vs('abcdef'), vs('XY')
    call wend()
    call wbegin('(t5,''x'',t1,''y'',tr10)', 'T with literals, trailing TR')
    write(u, fm)
    call wend()
    ! A tab to the left while an X or TR skip is still pending puts the next field at a
    ! column that depends on the skip ("(a,5x,t2,a)" writes Z in column 6), which the
    ! component does not copy; the tabs below have no pending skip when they go left.
    call wbegin('(t3,a,t1,i1,t8,a)', 'T back into the record')
    write(u, fm) vs('abcdef'), vi(9), vs('Z')
    call wend()
    call wbegin('(t3,a,t1,i1,t4,2x,a)', 'T back, then X')
    write(u, fm) vs('abcdef'), vi(9), vs('Z')
    call wend()
    call wbegin('(a,t10,t4,a)', 'T forward then back')
    write(u, fm) vs('abcdef'), vs('Z')
    call wend()
    call wbegin('(a,t8,tl3,a)', 'T then TL')
    write(u, fm) vs('abcdef'), vs('Z')
    call wend()
    call wbegin('(a,5x,tl2,a)', 'TL within the skip')
    write(u, fm) vs('abcdef'), vs('Z')
    call wend()
    call wbegin('(a,4x,t8,a)', 'X then T forward')
    write(u, fm) vs('abcdef'), vs('Z')
    call wend()
    call wbegin('(''it''''s'',i3,"say ""hi""",'' '')', 'literal quotes')
    write(u, fm) vi(7)
    call wend()
    call wbegin('(i3/i3)', 'slash')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('(/i3)', 'slash first')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(i7,'' seconds elapsed''//)', 'slashes last')
    write(u, fm) vi(35)
    call wend()
    call wbegin('(i2,3/i2)', 'slash repeated')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('(/'' PHASE '',I2,'': '',A70/)', 'phase heading')
    write(u, fm) vi(1), vs('Al2O3')
    call wend()
    call wbegin('(''  CHI2 ='',F6.2,$)', 'dollar')
    write(u, fm) vd(1.2345d0)
    call wend()
    call wbegin('(''  CHI2 ='',F6.2,$)', 'dollar, no value')
    write(u, fm)
    call wend()
    call wbegin('(i3/i3,$)', 'dollar after slash')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('(a,$)', 'dollar with reversion')
    write(u, fm) vs('one'), vs('two'), vs('three')
    call wend()
    call wbegin('($,a)', 'dollar first, reversion')
    write(u, fm) vs('a'), vs('b')
    call wend()
    call wbegin('(a/$)', 'dollar after slash, reversion')
    write(u, fm) vs('a'), vs('b')
    call wend()
    call wbegin('(a/)', 'slash last, reversion')
    write(u, fm) vs('a'), vs('b')
    call wend()
    call wbegin('(a,/,i2,$)', 'slash after the dollar was met')
    write(u, fm) vs('a'), vi(1), vs('b'), vi(2)
    call wend()
    call wbegin('($,a/)', 'dollar first, slash')
    write(u, fm) vs('a'), vs('b')
    call wend()
    call wbegin('(a,$//a)', 'slashes behind the dollar')
    write(u, fm) vs('a'), vs('b')
    call wend()
  end subroutine

  subroutine writeGroups()
    real(8) :: x(10)
    integer :: k
    x = [(k * 1.5d0 - 4d0, k = 1, 10)]
    call wbegin('6(a4,i6,1x)', 'group repeat')
    write(u, fm) (vs('ab' // achar(64 + k)), vi(k * 11), k = 1, 6)
    call wend()
    call wbegin('6(a4,i6,1x)', 'group reversion, running out')
    write(u, fm) (vs('cd' // achar(64 + k)), vi(k * 11), k = 1, 8)
    call wend()
    call wbegin('(i2,2(i3,''x''))', 'group with literal')
    write(u, fm) vi(1), vi(2), vi(3)
    call wend()
    call wbegin('(2(2(i2,1x),''|''))', 'nested groups')
    write(u, fm) vi(1), vi(2), vi(3), vi(4)
    call wend()
    call wbegin('(a,2(i3))', 'reversion to last group')
    write(u, fm) vs('h'), vi(1), vi(2), vi(3), vi(4), vi(5)
    call wend()
    call wbegin('(i3,2(i4,i5),i2)', 'reversion to group then rest')
    write(u, fm) (vi(k), k = 1, 9)
    call wend()
    call wbegin('(i1,(i2),(i3,i4))', 'reversion to the rightmost group')
    write(u, fm) (vi(k), k = 1, 7)
    call wend()
    call wbegin('(i3,'' x'')', 'reversion without group')
    write(u, fm) vi(1), vi(2), vi(3)
    call wend()
    call wbegin('(7f10.0)', 'reversion of a list')
    write(u, fm) (vd(x(k)), k = 1, 10)
    call wend()
    call wbegin('8F9.0', 'list without parentheses')
    write(u, fm) (vd(x(k) * 100), k = 1, 8)
    call wend()
    call wbegin('I5,5F5.2,3F10.5', 'mixed list without parentheses')
    write(u, fm) vi(3), (vd(x(k) / 7), k = 1, 8)
    call wend()
    call wbegin('(I5,3X,3I4,A1,2F8.3,2F10.0,F9.0,F8.1)', 'reflection line')
    write(u, fm) vi(17), vi(1), vi(-2), vi(3), vs('*'), vd(12.3456d0), vd(-0.5d0), vd(1234.5d0), &
      vd(-17.5d0), vd(98765.4d0), vd(3.25d0)
    call wend()
    call wbegin('(a4,6x,i3,5f9.5)', 'running out of values')
    write(u, fm) vs('SCAL'), vi(2)
    call wend()
    call wbegin('(i3,'' a'',i3,'' b'')', 'literal before the missing value')
    write(u, fm) vi(1)
    call wend()
    call wbegin('(i3,'' a'',i3,'' b'')', 'literal after the last value')
    write(u, fm) vi(1), vi(2)
    call wend()
    call wbegin('('' a'',i3)', 'no values')
    write(u, fm)
    call wend()
    call wbegin('(i5)', 'no values, data first')
    write(u, fm)
    call wend()
    call wbegin('(1X,''R'',2(F6.2,"/"),I2)', 'literals in groups')
    write(u, fm) vd(1d0), vd(2d0), vi(3)
    call wend()
  end subroutine

  subroutine readIntegers()
    integer :: ios
    call rbegin('(i5)', [character(len=20) :: '  123'], 'i', 'I right')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '123  '], 'i', 'I left, blanks ignored')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '1 2 3'], 'i', 'I blanks inside')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: ''], 'i', 'I empty record')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(2i5)', [character(len=20) :: '  -12   +7'], 'i i', 'I signs')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: ' - 12'], 'i', 'I blank after sign')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '    -'], 'i', 'I sign alone')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  12-'], 'i', 'I sign last')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  1.0'], 'i', 'I with point')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  abc'], 'i', 'I text')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  1e2'], 'i', 'I exponent')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i12)', [character(len=20) :: ' 99999999999'], 'i', 'I overflow')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i12)', [character(len=20) :: ' -2147483648'], 'i', 'I smallest')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5,i5)', [character(len=20) :: '12,34'], 'i i', 'I comma')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i5,i5)', [character(len=20) :: ',12'], 'i i', 'I leading comma')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(3i5)', [character(len=20) :: ',,5'], 'i i i', 'I two commas')
    read(u, fm, iostat=ios) ti(1), ti(2), ti(3)
    call rend(ios)
    call rbegin('(3i3)', [character(len=20) :: '1,234567'], 'i i i', 'I comma shifts fields')
    read(u, fm, iostat=ios) ti(1), ti(2), ti(3)
    call rend(ios)
    call rbegin('(i2,i3)', [character(len=20) :: '12345'], 'i i', 'I adjacent')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i4,i4)', [character(len=20) :: '  7'], 'i i', 'I short record')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i5,i2)', [character(len=20) :: '  -   7'], 'i i', 'I sign and blanks')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  -'], 'i', 'I sign at the record end')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i5)', [character(len=20) :: '  + 5'], 'i', 'I plus, blank')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i3,i3)', [character(len=20) :: '-,5'], 'i i', 'I sign before comma')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(I3)', [character(len=20) :: '  +'], 'i', 'I plus alone')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
  end subroutine

  subroutine readReals()
    integer :: ios
    call readF('(f9.5)', '    12345', 'implied decimals')
    call readF('(f10.0)', '        12', 'implied none')
    call readF('(f10.3)', '     12345', 'implied three')
    call readF('(f10.3)', '  1 5', 'implied with blank')
    call readF('(f10.3)', '       1.5', 'point overrides')
    call readF('(f10.3)', '1.5', 'point, left')
    call readF('(f10.3)', '  15', 'implied, left')
    call readF('(f8.2)', '  1.5E2', 'exponent E')
    call readF('(f8.2)', '  1.5D2', 'exponent D')
    call readF('(f8.2)', '1.5e+2', 'exponent e+')
    call readF('(f8.2)', '  1.5-2', 'exponent sign only')
    call readF('(f8.2)', '  1.5+2', 'exponent plus only')
    call readF('(f8.2)', '  1.5d-2', 'exponent d-')
    call readF('(f8.2)', '  15E2', 'exponent, implied decimals')
    call readF('(f8.2)', '  15-2', 'sign exponent, implied decimals')
    call readF('(f8.2)', '1.5E 2', 'blank in exponent')
    call readF('(f8.2)', '1.5 E2', 'blank before exponent')
    call readF('(f8.2)', '  1.5E', 'exponent letter alone')
    call readF('(f8.2)', '  E2', 'exponent alone')
    call readF('(f8.2)', '    .', 'point alone')
    call readF('(f8.2)', '   -.5', 'negative fraction')
    call readF('(f8.2)', '   +.5', 'positive fraction')
    call readF('(f8.2)', '    5.', 'point last')
    call readF('(f8.2)', '   -', 'minus alone')
    call readF('(f8.2)', ' - 1 . 5', 'blanks everywhere')
    call readF('(f8.2)', '', 'empty record')
    call readF('(f8.2)', '        ', 'blank field')
    call readF('(f8.2)', '1.2.3', 'two points')
    call readF('(f8.2)', 'abc', 'text')
    call readF('(f8.2)', '1.5x', 'text behind')
    call readF('(f8.2)', '1.5E2.0', 'point in exponent')
    call readF('(f8.2)', '1.5E-+2', 'two exponent signs')
    call readF('(f8.2)', '--1', 'two signs')
    call readF('(f8.2)', '  -.', 'minus and point')
    call readF('(f8.2)', ' -E2', 'minus and exponent')
    call readF('(f8.2)', '    -0', 'minus zero')
    call rbegin('(f5.2,i2)', [character(len=20) :: '  -   7'], 'f i', 'minus and blanks')
    read(u, fm, iostat=ios) tf(1), ti(1)
    call rend(ios)
    call readF('(f8.2)', '1.5E2 3', 'blank inside exponent')
    call readF('(f8.2)', '  1.5+', 'exponent sign without digits')
    call readF('(f8.2)', '  Inf', 'infinity short')
    call readF('(f10.2)', '-Infinity', 'minus infinity')
    call readF('(f8.2)', ' NaN', 'NaN')
    call readF('(f8.2)', 'nan', 'NaN lower case')
    call readF('(f8.2)', 'infin', 'infinity misspelt')
    call readF('(f15.0)', '1e99999999999', 'exponent overflow')
    call readF('(f15.0)', '1e-10000', 'exponent just too large')
    call readF('(f15.0)', '1e-9999', 'largest exponent')
    call readF('(f15.0)', '1e09999', 'largest exponent, leading zero')
    call readF('(f10.0)', '0.1', 'real(4) rounding')
    call readF('(f10.0)', '16777217', 'real(4) tie to even')
    call readF('(f12.0)', '1.00000006', 'real(4) just above tie')
    call readF('(f15.0)', '3.4028236e38', 'real(4) just over the largest')
    call readF('(f10.0)', '1e39', 'real(4) overflow')
    call readF('(f10.0)', '1e-46', 'real(4) underflow')
    call readF('(f10.0)', '1.4e-45', 'real(4) smallest')
    call readF('(e12.5)', ' 0.12345E+03', 'E field')
    call readF('(e12.5)', '     15', 'E field, implied decimals')
    call readF('(f5.1)', '0.333333333', 'field shorter than the digits')
    call readD('(f25.0)', '3.14159265358979323846', 'real(8) pi')
    call readD('(f25.0)', '0.1', 'real(8) tenth')
    call readD('(f25.0)', '1.7976931348623157e308', 'real(8) largest')
    call readD('(f25.0)', '2.4703282292062328e-324', 'real(8) half of smallest')
    call readD('(f25.0)', '1D-310', 'real(8) subnormal')
    call readD('(f9.5)', '   123456', 'real(8) implied decimals')
    call readD('(f9.3)', '-1 2 3 4', 'real(8) blanks')
    call readD('(f10.0)', '1e400', 'real(8) overflow')
    call readD('(f10.0)', '-1e-400', 'real(8) underflow')
    call rbegin('(2f5.1)', [character(len=20) :: '1,5'], 'f f', 'F comma, implied decimals')
    read(u, fm, iostat=ios) tf(1), tf(2)
    call rend(ios)
    call rbegin('(f5.1,f5.1)', [character(len=20) :: '1.5,2.5'], 'f f', 'F comma')
    read(u, fm, iostat=ios) tf(1), tf(2)
    call rend(ios)
    call rbegin('(f5.1,f5.1)', [character(len=20) :: ',2.5'], 'f f', 'F leading comma')
    read(u, fm, iostat=ios) tf(1), tf(2)
    call rend(ios)
    call rbegin('(3f5.1)', [character(len=20) :: ',,3.0'], 'f f f', 'F two commas')
    read(u, fm, iostat=ios) tf(1), tf(2), tf(3)
    call rend(ios)
    call rbegin('(3f5.1)', [character(len=20) :: '1.5,,2'], 'f f f', 'F comma pair')
    read(u, fm, iostat=ios) tf(1), tf(2), tf(3)
    call rend(ios)
    call rbegin('(f4.1,i3)', [character(len=20) :: '1.25,7'], 'f i', 'F comma past width')
    read(u, fm, iostat=ios) tf(1), ti(1)
    call rend(ios)
    call rbegin('(f5.1,f5.1,i3)', [character(len=20) :: '1.5'], 'f f i', 'F short record')
    read(u, fm, iostat=ios) tf(1), tf(2), ti(1)
    call rend(ios)
    call rbegin('(7f10.0)', [character(len=80) :: &
      '   10.0000   130.000    0.0200 1.5     2      -3.1e-2 ,7'], 'f f f f f f f', &
      'F list of a record file')
    read(u, fm, iostat=ios) tf(1:7)
    call rend(ios)
  end subroutine

  subroutine readF(format, record, comment)
    character(len=*), intent(in) :: format, record, comment
    integer :: ios
    call rbegin(format, [record], 'f', comment)
    read(u, fm, iostat=ios) tf(1)
    call rend(ios)
  end subroutine

  subroutine readD(format, record, comment)
    character(len=*), intent(in) :: format, record, comment
    integer :: ios
    call rbegin(format, [record], 'd', comment)
    read(u, fm, iostat=ios) td(1)
    call rend(ios)
  end subroutine

  subroutine readOther()
    integer :: ios
    call rbegin('(a5)', [character(len=20) :: 'hello world'], 's5', 'A narrower than the record')
    read(u, fm, iostat=ios) ts(1)(1:5)
    call rend(ios)
    call rbegin('(a12)', [character(len=20) :: 'short'], 's12', 'A past the record end')
    read(u, fm, iostat=ios) ts(1)(1:12)
    call rend(ios)
    call rbegin('(a)', [character(len=40) :: '  Title, with, commas'], 's40', 'A rest of record')
    read(u, fm, iostat=ios) ts(1)
    call rend(ios)
    call rbegin('(a5)', [character(len=20) :: ''], 's5', 'A empty record')
    read(u, fm, iostat=ios) ts(1)(1:5)
    call rend(ios)
    call rbegin('(a3,a2,i3)', [character(len=20) :: 'ab,cd,12'], 's3 s2 i', 'A keeps commas')
    read(u, fm, iostat=ios) ts(1)(1:3), ts(2)(1:2), ti(1)
    call rend(ios)
    call rbegin('(a4,6x,i3,5f9.5)', [character(len=80) :: &
      'SCAL        2  0.12345  1.5     -0.00001    12345'], 's4 i f f f f f', 'record line')
    read(u, fm, iostat=ios) ts(1)(1:4), ti(1), tf(1:5)
    call rend(ios)
    call rbegin('(a4,i6)', [character(len=20) :: 'NAM   123'], 's4 i', 'A then I')
    read(u, fm, iostat=ios) ts(1)(1:4), ti(1)
    call rend(ios)
    call rbegin('(5x,i3)', [character(len=20) :: 'abcde123'], 'i', 'X skips text')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(t6,i3)', [character(len=20) :: 'abcde123'], 'i', 'T')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i3,tl3,i3)', [character(len=20) :: '123'], 'i i', 'TL reads again')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(t4,i2,t1,i2)', [character(len=20) :: '123456'], 'i i', 'T backward')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i2,3x,t1,i2)', [character(len=20) :: '12345'], 'i i', 'X then T back')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(tr2,i3)', [character(len=20) :: 'xx456'], 'i', 'TR')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(30x,i3)', [character(len=20) :: '12345'], 'i', 'X past the record end')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i3/i3)', [character(len=20) :: '  1', '  2'], 'i i', 'slash')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i3//i3)', [character(len=20) :: '  1', '  2', '  3'], 'i i', 'two slashes')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(/i3)', [character(len=20) :: '  1', '  2'], 'i', 'slash first')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i3)', [character(len=20) :: '  1', '  2', '  3'], 'i i i', 'reversion')
    read(u, fm, iostat=ios) ti(1), ti(2), ti(3)
    call rend(ios)
    call rbegin('(2i3)', [character(len=20) :: '  1  2', '  3  4', '  5  6'], 'i i i i i', &
      'reversion mid record')
    read(u, fm, iostat=ios) ti(1:5)
    call rend(ios)
    call rbegin('(i2,(i3))', [character(len=20) :: ' 1  2', '  3', '  4'], 'i i i i', &
      'reversion to group')
    read(u, fm, iostat=ios) ti(1:4)
    call rend(ios)
    call rbegin('(a4,i3/2f5.1)', [character(len=20) :: 'ABCD 12', '  1.5  2.5'], 's4 i f f', &
      'two records')
    read(u, fm, iostat=ios) ts(1)(1:4), ti(1), tf(1), tf(2)
    call rend(ios)
    call rbegin('6(a4,i6,1x)', [character(len=80) :: &
      'ab       1 cd      22 ef     333'], 's4 i s4 i s4 i', 'group repeat')
    read(u, fm, iostat=ios) ts(1)(1:4), ti(1), ts(2)(1:4), ti(2), ts(3)(1:4), ti(3)
    call rend(ios)
    call rbegin('(i3/i3)', [character(len=20) :: '  1'], 'i i', 'record missing')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i3/)', [character(len=20) :: '  1'], 'i', 'slash after the last target')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('(i3)', [character(len=20) :: '  1'], 'i i', 'reversion past the end')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
    call rbegin('(i3,$)', [character(len=20) :: '  1'], 'i', 'dollar ignored')
    read(u, fm, iostat=ios) ti(1)
    call rend(ios)
    call rbegin('( I3 , F6.2 )', [character(len=20) :: ' 12  1234'], 'i f', 'blanks in format')
    read(u, fm, iostat=ios) ti(1), tf(1)
    call rend(ios)
    call rbegin('(i3,''ab'',i3)', [character(len=20) :: '  1ab  2'], 'i i', 'literal')
    read(u, fm, iostat=ios) ti(1), ti(2)
    call rend(ios)
  end subroutine
end program make_cases
