! Shows heat that spreads over a plate with a hot bottom edge and cold other edges, until you close the window.
!
!     heat [STEPS]     stops after STEPS and keeps showing the last one
!
!     gfortran examples/fortran/framesink.f90 examples/fortran/heat.f90 -Lbuild/release/lib -lframesink -o heat
program heat
  use framesink
  implicit none

  integer, parameter :: rows = 200, columns = 320, steps_per_frame = 10
  character(*), parameter :: name = "examples/heat" // c_null_char
  real(c_double), target :: plate(rows, columns)
  character(kind=c_char) :: error(framesink_error_bytes + 1)  ! the last byte stays zero
  type(c_ptr) :: display
  integer :: steps, step

  interface
    integer(c_int) function usleep(microseconds) bind(c)
      import
      integer(c_int), value :: microseconds
    end function
  end interface

  steps = steps_asked_for()
  plate = 0
  plate(rows, :) = 1
  display = open_display()
  call show()

  step = 0
  do while (is_player_open(name) /= 0)
    if (step /= steps) then
      call spread()
      step = step + 1
    end if
    if (step == steps .or. mod(step, steps_per_frame) == 0) then
      call show()
      call rest()
    end if
  end do

  call lib_terminate(display)
  call lib_destroy(display)

contains

  ! Sets each point to the mean of its four neighbours.
  subroutine spread()
    plate(2:rows-1, 2:columns-1) = 0.25d0 * ((plate(1:rows-2, 2:columns-1) + plate(3:rows, 2:columns-1)) &
      + (plate(2:rows-1, 1:columns-2) + plate(2:rows-1, 3:columns)))
  end subroutine

  function open_display() result(block)
    type(c_ptr) :: block
    type(input_description) :: description
    description%widths(1) = columns
    description%heights(1) = rows
    error = c_null_char
    block = lib_create(error, 0_c_int64_t, name, "Heat" // c_null_char, 0_c_int8_t, description, 1_c_int8_t, &
      100, 100, 0_c_int8_t, 0, 0, 0, 0_c_int8_t, 0_c_int8_t)
    if (.not. c_associated(block)) error stop "heat: no display"
    call lib_start(block, error)
  end function

  subroutine show()
    call lib_update(display, error, c_loc(plate), c_null_ptr, c_null_ptr, framesink_configured_size, &
      framesink_configured_size)
  end subroutine

  subroutine rest()
    if (usleep(16000_c_int) /= 0) continue
  end subroutine

  ! Returns the first argument; without one, returns -1, which the number of steps never reaches.
  integer function steps_asked_for() result(count)
    character(20) :: argument
    count = -1
    call get_command_argument(1, argument)
    if (argument /= "") read (argument, *) count
  end function
end program
