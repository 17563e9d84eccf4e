! framesink's C interface for Fortran; include/framesink/framesink.h describes the functions.
! Planes are arrays plane(row, column). They need no copy, because Fortran and framesink are both column-major.
! Names and titles are C strings: "name" // c_null_char.
module framesink
  use, intrinsic :: iso_c_binding
  implicit none

  ! Sample types. Fortran has no unsigned kinds; store unsigned samples in the signed kind of the same size.
  integer(c_int32_t), parameter :: framesink_double = 0, framesink_single = 1, framesink_int8 = 2, &
    framesink_uint8 = 3, framesink_int16 = 4, framesink_uint16 = 5, framesink_int32 = 6, framesink_uint32 = 7, &
    framesink_boolean = 8

  integer, parameter :: framesink_error_bytes = 1024
  ! Passed to lib_update as width and height, this selects those of the description.
  integer(c_int32_t), parameter :: framesink_configured_size = -1
  ! Passed to lib_create as window_x and window_y, this lets the window system choose the position.
  integer(c_int32_t), parameter :: framesink_position_undefined = int(z'1FFF0000', c_int32_t)

  type, bind(c) :: input_description
    integer(c_int8_t) :: valid = 1
    integer(c_int8_t) :: reserved1(23) = 0
    character(kind=c_char) :: fourcc(4) = c_null_char
    integer(c_int32_t) :: input_count = 1
    integer(c_int32_t) :: component_count = 1
    integer(c_int32_t) :: widths(3) = 0
    integer(c_int32_t) :: heights(3) = 0
    integer(c_int32_t) :: data_type = framesink_double
    integer(c_int32_t) :: layout = 1
    integer(c_int8_t) :: reserved2(12) = 0
    integer(c_int8_t) :: reserved3(8) = 0
  end type

  interface
    type(c_ptr) function lib_create(error_message, host_context, player_name, window_title, fullscreen, &
      description, open_at_start, window_x, window_y, use_window_size, window_width, window_height, &
      input_conversion, allocate_plane_buffers, synchronous) bind(c, name="libCreate")
      import
      character(kind=c_char), intent(inout) :: error_message(*)
      integer(c_int64_t), value :: host_context
      character(kind=c_char), intent(in) :: player_name(*), window_title(*)
      integer(c_int8_t), value :: fullscreen
      type(input_description), intent(in) :: description
      integer(c_int8_t), value :: open_at_start
      integer(c_int32_t), value :: window_x, window_y
      integer(c_int8_t), value :: use_window_size
      integer(c_int32_t), value :: window_width, window_height, input_conversion
      integer(c_int8_t), value :: allocate_plane_buffers, synchronous
    end function

    subroutine lib_start(block, error_message) bind(c, name="libStart")
      import
      type(c_ptr), value :: block
      character(kind=c_char), intent(inout) :: error_message(*)
    end subroutine

    ! Pass planes with c_loc, and c_null_ptr for planes that are not needed.
    subroutine lib_update(block, error_message, plane1, plane2, plane3, width, height) bind(c, name="libUpdate")
      import
      type(c_ptr), value :: block
      character(kind=c_char), intent(inout) :: error_message(*)
      type(c_ptr), value :: plane1, plane2, plane3
      integer(c_int32_t), value :: width, height
    end subroutine

    subroutine lib_terminate(block) bind(c, name="libTerminate")
      import
      type(c_ptr), value :: block
    end subroutine

    subroutine lib_destroy(block) bind(c, name="libDestroy")
      import
      type(c_ptr), value :: block
    end subroutine

    ! Returns 1 if a window of this name is open, otherwise 0.
    integer(c_int8_t) function is_player_open(name) bind(c, name="isPlayerOpen")
      import
      character(kind=c_char), intent(in) :: name(*)
    end function

    subroutine destroy_video_window(name) bind(c, name="destroyVideoWindow")
      import
      character(kind=c_char), intent(in) :: name(*)
    end subroutine
  end interface
end module
